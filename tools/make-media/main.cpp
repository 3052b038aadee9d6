#include "Picture.h"

#include <OS.h>
#include <OS/Core/iUtils.h>

#include <cstdio>
#include <cstdlib>

/// Draws the sample media of the sample editor into a folder.
int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fputs("Usage: make-media FOLDER\n", stderr);
        return 2;
    }
    static constexpr struct
    {
        const wchar_t* name;
        Tq::Ptr<iHostImage> (*draw)();
    } kMedia[] = {
        {L"bars.png", Media::colourBars}, {L"dawn.jpg", Media::dawn},
        {L"zone.tif", Media::zonePlate},  {L"ramp.ppm", Media::ramps},
        {L"quay.bmp", Media::quay},       {L"pier.jpg", Media::pier},
        {L"title.png", Media::titleCard}, {L"chart.tif", Media::testChart},
    };
    const LightweightString<wchar_t> folder = OS()->utils()->fromUTF8(argv[1], -1);
    for (const auto& medium : kMedia)
        if (!Media::save(medium.draw(), folder, medium.name)) {
            std::fprintf(stderr, "make-media: cannot write %ls into \"%s\"\n", medium.name,
                         argv[1]);
            return EXIT_FAILURE;
        }
    return EXIT_SUCCESS;
}
