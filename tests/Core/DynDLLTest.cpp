#include "OS/Mac/Core/DynDLL.h"
#include "OS/Mac/Core/ResourceMap.h"
#include "support/OutputCapture.h"

#include <OS.h>
#include <OS/Files/iFileManager.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

using Bytes = std::vector<std::uint8_t>;

void put(Bytes& out, std::uint32_t value, int bytes)
{
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
        out.push_back(static_cast<std::uint8_t>(value >> shift));
}

struct Entry
{
    const char* type;
    std::int16_t id;
    std::string text;
};

// A resource file as the format's description has it; entries of a type must follow each other.
Bytes resourceFile(const std::vector<Entry>& entries)
{
    Bytes data, types, references;
    std::vector<std::pair<std::string, unsigned int>> counts;
    for (const Entry& entry : entries) {
        if (counts.empty() || counts.back().first != entry.type)
            counts.emplace_back(entry.type, 0u);
        ++counts.back().second;
        put(references, static_cast<std::uint16_t>(entry.id), 2);
        put(references, 0xFFFF, 2);
        put(references, static_cast<std::uint32_t>(data.size()),
            4); // attributes 0 and a 24-bit offset
        put(references, 0, 4);
        put(data, static_cast<std::uint32_t>(entry.text.size()), 4);
        data.insert(data.end(), entry.text.begin(), entry.text.end());
    }
    put(types, static_cast<std::uint32_t>(counts.size() - 1) & 0xFFFF, 2);
    unsigned int before = 0;
    for (const auto& [type, count] : counts) {
        types.insert(types.end(), type.begin(), type.end());
        put(types, count - 1, 2);
        put(types, static_cast<std::uint32_t>(2 + counts.size() * 8 + before * 12), 2);
        before += count;
    }
    Bytes file;
    const auto dataSize = static_cast<std::uint32_t>(data.size());
    const auto mapSize = static_cast<std::uint32_t>(28 + types.size() + references.size());
    for (const std::uint32_t value : {256u, 256u + dataSize, dataSize, mapSize})
        put(file, value, 4);
    file.resize(256);
    file.insert(file.end(), data.begin(), data.end());
    file.insert(file.end(), 24, 0);
    put(file, 28, 2);
    put(file, mapSize, 2);
    file.insert(file.end(), types.begin(), types.end());
    file.insert(file.end(), references.begin(), references.end());
    return file;
}

std::string textOf(const iDLL::Resource& resource)
{
    return std::string(reinterpret_cast<const char*>(resource.data), resource.size);
}

// A bundle on disk around this project's own test library.
class BundleTest : public testing::Test
{
protected:
    BundleTest()
    {
        folder_ =
            fs::path(testing::TempDir()) / ("bundles" + std::to_string(getpid())) / "Probe.bundle";
        fs::create_directories(folder_ / "Contents/Linux-x86-64");
        fs::create_directories(folder_ / "Contents/Resources");
        fs::copy_file(OS_TEST_LIBRARY, folder_ / "Contents/Linux-x86-64/Probe.so",
                      fs::copy_options::overwrite_existing);
        const Bytes file =
            resourceFile({{"PiPL", 16000, "plug-in"}, {"TEXT", -1, "below"}, {"TEXT", 128, ""}});
        std::ofstream(folder_ / "Contents/Resources/Probe.rsrc", std::ios::binary)
            .write(reinterpret_cast<const char*>(file.data()),
                   static_cast<std::streamsize>(file.size()));
    }
    ~BundleTest() override { fs::remove_all(folder_.parent_path()); }

    Tq::Ptr<iDLL> open() { return OS()->fileMgr()->openDLL(folder_.wstring().c_str()); }

    fs::path folder_;
};

} // namespace

TEST(DynDLL, LoadsALibraryAndItsFunctions)
{
    const std::string text = OS_TEST_LIBRARY;
    const std::wstring path(text.begin(), text.end());
    const auto library = OS()->fileMgr()->openDLL(path.c_str());
    ASSERT_TRUE(library->valid());
    EXPECT_EQ(library->getFilename(), path.c_str());
    const auto answer = reinterpret_cast<int (*)()>(library->getFunction("probe_answer"));
    ASSERT_NE(answer, nullptr);
    EXPECT_EQ(answer(), 42);
    EXPECT_FALSE(library->containsFunction("probe_missing"));
    EXPECT_EQ(library->getResource(L"PiPL", L"#16000").size, 0u) << "only bundles have resources";
}

TEST(DynDLL, AMissingFileSaysWhyAndStaysUsable)
{
    Tq::Ptr<iDLL> library;
    const std::string output =
        outputOf([&] { library = OS()->fileMgr()->openDLL(L"/missing/lib.so"); });
    EXPECT_TRUE(output.starts_with("DynDLL::DynDLL() : dlopen failed (/missing/lib.so: "))
        << output;
    EXPECT_TRUE(output.ends_with(")\n"));
    EXPECT_FALSE(library->valid());
    EXPECT_EQ(library->getFunction("anything"), nullptr);
}

TEST_F(BundleTest, FindsFunctionsAndResources)
{
    const auto bundle = open();
    ASSERT_TRUE(bundle->valid());
    EXPECT_TRUE(bundle->containsFunction("probe_answer"));
    EXPECT_EQ(textOf(bundle->getResource(L"PiPL", L"#16000")), "plug-in");
    EXPECT_EQ(textOf(bundle->getResource(L"TEXTmore", L"#-1")), "below");
    EXPECT_EQ(textOf(bundle->getResource(L"TEXT", L"#128")), "");
    for (const wchar_t* name : {L"16000", L"#", L"#1x", L"#99999", L"name", L""})
        EXPECT_EQ(bundle->getResource(L"PiPL", name).data, nullptr);
    EXPECT_EQ(bundle->getResource(L"PiP", L"#16000").data, nullptr);
    EXPECT_FALSE(bundle->containsResource(L"PiPL", L"#16000")) << "deliberate";
}

TEST_F(BundleTest, ATrailingSlashChangesNothing)
{
    folder_ /= "";
    EXPECT_EQ(textOf(open()->getResource(L"PiPL", L"#16000")), "plug-in");
    folder_ = folder_.parent_path();
}

// Every cut and every changed byte is refused or reads other bytes of the file, never beyond it.
TEST(ResourceMap, ADamagedFileNeverReadsOutside)
{
    const Bytes whole = resourceFile({{"PiPL", 1, "one"}, {"TEXT", 2, "two"}});
    const auto probe = [](const Bytes& file) {
        const ResourceMap map{ResourceMap::Bytes(file)};
        map.count(0x5069504C);
        for (const std::int16_t id : {std::int16_t(1), std::int16_t(2)})
            for (const ResourceMap::FourCC type : {0x5069504Cu, 0x54455854u})
                if (const auto found = map.find(type, id)) {
                    EXPECT_GE(found->data(), file.data());
                    EXPECT_LE(found->data() + found->size(), file.data() + file.size());
                }
    };
    EXPECT_EQ(ResourceMap{ResourceMap::Bytes(whole)}.count(0x5069504C), 1u);
    for (std::size_t size = 0; size <= whole.size(); ++size)
        probe(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
    for (std::size_t at = 0; at < whole.size(); ++at)
        for (const int value : {0x00, 0x7F, 0xFF}) {
            Bytes damaged = whole;
            damaged[at] = static_cast<std::uint8_t>(value);
            probe(damaged);
        }
}
