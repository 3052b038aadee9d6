#pragma once

#include <QImage>
#include <gtest/gtest.h>

/// How far two pictures may be apart and still agree.
struct ImageTolerance
{
    int channel = 0;         ///< difference that a channel may have anywhere, 0 to 255
    double strayShare = 0.0; ///< share of the pixels that may be further apart
};

/// Compares pictures pixel by pixel, red, green, blue and alpha.
///
/// On failure writes NAME-actual.png, NAME-expected.png and NAME-difference.png into the folder
/// "image-failures" of the working directory, and says where the worst pixel is.
testing::AssertionResult imagesAgree(const QImage& actual, const QImage& expected, const char* name,
                                     const ImageTolerance& tolerance = {});
