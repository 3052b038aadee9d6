#include "support/Pictures.h"

#include "OS/Mac/Core/PathText.h"

#include <cstdlib>
#include <fstream>
#include <iterator>

Pictures::Pictures()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "pictures-XXXXXX").string();
    if (!mkdtemp(pattern.data()))
        std::abort();
    folder_ = pattern;
}

Pictures::~Pictures()
{
    std::filesystem::remove_all(folder_);
}

LightweightString<wchar_t> Pictures::wide(const std::string& name) const
{
    return OSInternal::pathFromSystem(LightweightString<char>(path(name).c_str()));
}

void Pictures::write(const std::string& name, const Bytes& bytes) const
{
    std::ofstream file(path(name), std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
}

Pictures::Bytes Pictures::read(const std::string& name) const
{
    std::ifstream file(path(name), std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), {});
}

Pictures::Bytes Pictures::jpeg(int width, int height, int components, J_COLOR_SPACE space,
                               const Bytes& samples,
                               const std::function<void(jpeg_compress_struct&)>& prepare)
{
    jpeg_compress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* memory = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &memory, &size);
    info.image_width = static_cast<JDIMENSION>(width);
    info.image_height = static_cast<JDIMENSION>(height);
    info.input_components = components;
    info.in_color_space = space;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, 100, TRUE);
    if (prepare)
        prepare(info);
    jpeg_start_compress(&info, TRUE);
    while (info.next_scanline < info.image_height) {
        auto* row = const_cast<unsigned char*>(samples.data()) +
                    std::size_t(info.next_scanline) * std::size_t(width) * std::size_t(components);
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    Bytes result(memory, memory + size);
    jpeg_destroy_compress(&info);
    std::free(memory);
    return result;
}

void Pictures::tiff(const std::string& name, const std::function<void(TIFF*)>& code) const
{
    TIFF* tiff = TIFFOpen(path(name).c_str(), "w");
    if (!tiff)
        std::abort();
    code(tiff);
    TIFFClose(tiff);
}
