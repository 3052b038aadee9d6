#pragma once

#include <OS/Core/iObject.h>

/// The shape of the mouse pointer. Made and installed through iWindowManager.
class OS_API iMouseCursor : public iObject
{
public:
    /// Numbers from 16 on give the arrow.
    enum eStockCursor : unsigned int
    {
        eSizeAll = 0,
        eSizeHorizontal = 1,       ///< 2 and 3 are the same
        eSizeVertical = 4,         ///< 5 and 6 are the same
        eSizeBackwardDiagonal = 7, ///< 8 and 9 are the same
        eSizeForwardDiagonal = 10, ///< 11 and 12 are the same
        eWait = 13,
        eForbidden = 14,
        eIBeam = 15,
        eArrow = 16
    };
};
