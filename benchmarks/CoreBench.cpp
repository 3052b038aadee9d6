// Core, measured inside the library.

#include "support/PointerRows.h"

int main()
{
    Bench::printHeader("Shared pointers inside the library");
    Bench::comparePointers("copy and release",
                           {{{"boost::intrusive_ptr"}, 1.05}, {{"std::shared_ptr"}, 0.6}});
}
