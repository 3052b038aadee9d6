#pragma once

#include <OS/Core/LightweightString.h>

#include <csetjmp>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <jpeglib.h>
#include <tiffio.h>

/// Makes picture files for tests, good and bad ones, in a folder that goes with this object.
class Pictures
{
public:
    using Bytes = std::vector<unsigned char>;

    Pictures();
    ~Pictures();
    Pictures(const Pictures&) = delete;
    Pictures& operator=(const Pictures&) = delete;

    std::string path(const std::string& name) const { return (folder_ / name).string(); }
    LightweightString<wchar_t> wide(const std::string& name) const;
    void write(const std::string& name, const Bytes& bytes) const;
    Bytes read(const std::string& name) const;

    /// Samples of `components` bytes each in `space`; `prepare` sees the compressor before it
    /// starts.
    static Bytes jpeg(int width, int height, int components, J_COLOR_SPACE space,
                      const Bytes& samples,
                      const std::function<void(jpeg_compress_struct&)>& prepare = {});
    /// Runs libtiff's own calls on a new file.
    void tiff(const std::string& name, const std::function<void(TIFF*)>& code) const;

private:
    std::filesystem::path folder_;
};
