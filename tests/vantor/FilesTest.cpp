#include "Editor.h"
#include "FrameWriter.h"
#include "Model/Removal.h"
#include "Model/Session.h"
#include "common/PictureFile.h"
#include "support/FreshProcess.h"

#include <OS.h>
#include <OS/Core/iUtils.h>
#include <OS/Media/iMediaServices.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace Vantor {
namespace {

namespace fs = std::filesystem;

Text wide(const std::string& text)
{
    return OS()->utils()->fromUTF8(text.c_str(), -1);
}

std::string narrow(const Text& text)
{
    return OS()->utils()->toUTF8(text).c_str();
}

std::string contentsOf(const fs::path& path)
{
    std::ifstream file(path);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

int entriesOf(const fs::path& folder)
{
    return static_cast<int>(
        std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

/// A variable of the environment for a while.
class Variable
{
public:
    Variable(const char* name, const char* value) : name_(name)
    {
        if (const char* old = std::getenv(name)) {
            old_ = old;
            had_ = true;
        }
        if (value)
            setenv(name, value, 1);
        else
            unsetenv(name);
    }
    ~Variable()
    {
        if (had_)
            setenv(name_, old_.c_str(), 1);
        else
            unsetenv(name_);
    }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    const char* name_;
    std::string old_;
    bool had_ = false;
};

/// A home of its own, with its trash, and a folder of pictures in it.
class FilesTest : public testing::Test
{
protected:
    FilesTest()
        : home_(fs::temp_directory_path() /
                ("vantor-" +
                 std::string(testing::UnitTest::GetInstance()->current_test_info()->name()) +
                 std::to_string(getpid()))),
          homeVariable_("HOME", home_.c_str()), dataVariable_("XDG_DATA_HOME", nullptr),
          configVariable_("XDG_CONFIG_HOME", nullptr)
    {
        fs::create_directories(pictures());
        fs::create_directories(home_ / ".local/share");
        for (const char* name : {"dawn.jpg", "pier.jpg"})
            fs::copy(fs::path(VANTOR_MEDIA) / name, pictures() / name);
    }
    ~FilesTest() override { fs::remove_all(home_); }

    fs::path pictures() const { return home_ / "rushes"; }
    fs::path trash() const { return home_ / ".local/share/Trash/files"; }
    fs::path settingsFile() const { return home_ / "Vantor/Preferences/UserSettings.txt"; }
    MediaBin bin() const
    {
        MediaBin bin;
        EXPECT_TRUE(addFolder(bin, wide(pictures().string())));
        return bin;
    }

    struct Outcome
    {
        int status;
        std::string errors;
    };
    Outcome run(const std::string& arguments) const
    {
        const std::string errors = (home_ / "errors").string();
        const int status = std::system(
            (std::string(VANTOR_PROGRAM) + " " + arguments + " >/dev/null 2>'" + errors + "'")
                .c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contentsOf(errors)};
    }

    const fs::path home_;
    const Variable homeVariable_;
    const Variable dataVariable_;
    const Variable configVariable_;
};

TEST_F(FilesTest, RemovedItemsGoToTheTrash)
{
    MediaBin media = bin();
    EXPECT_EQ(narrow(removeItem(media, 0, {})), "dawn.jpg moved to the trash");
    EXPECT_FALSE(fs::exists(pictures() / "dawn.jpg"));
    EXPECT_TRUE(fs::exists(trash() / "dawn.jpg"));
    ASSERT_EQ(media.items.size(), 1u);
    EXPECT_EQ(media.selected, MediaBin::kNone);
    EXPECT_TRUE(removeItem(media, 5, {}).empty());
    EXPECT_TRUE(removeItem(media, -1, {}).empty());
}

TEST_F(FilesTest, WhatCannotBeTrashedStays)
{
    MediaBin media;
    media.add(L"/proc/self/status", L"PNG"); // there is no trash on such a volume
    media.selected = 0;
    EXPECT_EQ(narrow(removeItem(media, 0, {})), "status stays: it cannot be moved to the trash");
    EXPECT_EQ(media.items.size(), 1u);
    EXPECT_EQ(media.selected, 0);
}

TEST_F(FilesTest, ItemsWhoseFileIsGoneAreTakenOut)
{
    MediaBin media = bin();
    fs::remove(pictures() / "dawn.jpg");
    EXPECT_EQ(narrow(removeItem(media, 0, {})), "dawn.jpg taken out of the bin; its file was gone");
    EXPECT_EQ(media.items.size(), 1u);
}

TEST_F(FilesTest, SampleMediaAreNeverTrashedWhateverPathLeadsThere)
{
    fs::create_directory_symlink(pictures(), home_ / "link");
    for (const fs::path& way : {pictures(), home_ / "link", home_ / "rushes/../rushes"}) {
        MediaBin media;
        ASSERT_TRUE(addFolder(media, wide(way.string())));
        EXPECT_EQ(narrow(removeItem(media, 0, {L"/nowhere/", wide(pictures().string() + "/")})),
                  "dawn.jpg taken out of the bin; sample media are not trashed");
        EXPECT_EQ(media.items.size(), 1u);
        EXPECT_TRUE(fs::exists(pictures() / "dawn.jpg"));
    }
}

/// Keys that go into an editor without a window.
void press(Editor& editor, std::uint32_t code, std::uint32_t modifiers = 0)
{
    iEventHandler::KeyEvent event;
    event.code = code;
    event.modifiers = modifiers;
    event.pressed = true;
    editor.handleKey(event);
}

TEST_F(FilesTest, DeleteInTheBinTrashesOneItemAndNoClip)
{
    if (runsInFreshProcess())
        return;
    const Tq::Ptr<Editor> editor(new Editor(makeEditorState(bin(), Text())));
    editor->allowFiles({}, wide((home_ / "frames").string()));
    const std::size_t clips = editor->state().project.clips.size();
    while (editor->state().focus != Focus::eBin)
        press(*editor, Key::eTab);
    press(*editor, Key::eRight); // selects
    for (int i = 0; i < 5; ++i)  // as when the key is held
        press(*editor, Key::eDelete);
    EXPECT_EQ(editor->state().bin.items.size(), 1u);
    EXPECT_EQ(entriesOf(trash()), 1);
    EXPECT_EQ(editor->state().project.clips.size(), clips);
    EXPECT_EQ(editor->state().changes(), 0) << "the trash is not the timeline's to undo";
}

TEST_F(FilesTest, AnEditorThatMayNotTouchesNoFile)
{
    const Tq::Ptr<Editor> editor(new Editor(makeEditorState(bin(), Text())));
    while (editor->state().focus != Focus::eBin)
        press(*editor, Key::eTab);
    press(*editor, Key::eRight);
    press(*editor, Key::eDelete);
    press(*editor, 'e', Key::eControl);
    EXPECT_EQ(editor->state().bin.items.size(), 2u);
    EXPECT_EQ(entriesOf(pictures()), 2);
}

TEST_F(FilesTest, ControlEWritesAFrameUnderANewNameEachTime)
{
    EditorState state = makeEditorState(bin(), L"Dawn: 1/2");
    state.player.seek(112);
    const Tq::Ptr<Editor> editor(new Editor(state));
    const fs::path frames = home_ / "made/when/missing";
    editor->allowFiles({}, wide(frames.string() + "/"));
    press(*editor, 'e', Key::eControl);
    EXPECT_EQ(narrow(editor->state().message),
              "frame written to " + (frames / "Dawn- 1-2 00;00;04;12.png").string());
    const std::string first = contentsOf(frames / "Dawn- 1-2 00;00;04;12.png");
    press(*editor, 'e', Key::eControl);
    press(*editor, 'e', Key::eControl);
    EXPECT_TRUE(fs::exists(frames / "Dawn- 1-2 00;00;04;12 2.png"));
    EXPECT_TRUE(fs::exists(frames / "Dawn- 1-2 00;00;04;12 3.png"));
    EXPECT_EQ(entriesOf(frames), 3) << "nothing else is left behind";
    EXPECT_EQ(contentsOf(frames / "Dawn- 1-2 00;00;04;12.png"), first);

    const Tq::Ptr<iHostImage> image =
        OS()->mediaServices()->loadImage(wide((frames / "Dawn- 1-2 00;00;04;12.png").string()));
    ASSERT_TRUE(image);
    EXPECT_EQ(image->getSize(), XY<int>(1920, 1080));
}

TEST_F(FilesTest, FramesAreWrittenInEveryTypeThatCanBeSaved)
{
    EditorState state = makeEditorState(bin(), L"Dawn");
    state.player.seek(112);
    const Tq::Ptr<Editor> editor(new Editor(state));
    editor->allowFiles({}, wide(home_.string() + "/"));
    std::vector<iMediaServices::ImageType> types;
    OS()->mediaServices()->getSavableImageTypes(types);
    for (std::size_t i = 0; i < types.size(); ++i) {
        press(*editor, 'e', Key::eControl);
        const Text extension = types[i].extensions_.front().toLower();
        const Text path = wide((home_ / "Dawn 00;00;04;12.").string()) + extension;
        EXPECT_EQ(narrow(editor->state().message), narrow(L"frame written to " + path));
        const Tq::Ptr<iHostImage> image = OS()->mediaServices()->loadImage(path);
        ASSERT_TRUE(image) << narrow(path);
        EXPECT_EQ(image->getSize(), XY<int>(1920, 1080)) << narrow(path);
        press(*editor, 't', Key::eControl);
        const auto& next = types[(i + 1) % types.size()];
        EXPECT_EQ(narrow(editor->state().message),
                  narrow(L"frames are written as " + next.extensions_.front().toLower()));
    }
}

/// With a display of its own.
class OnDisplayFilesTest : public FilesTest
{
};

TEST_F(OnDisplayFilesTest, ControlGPutsAPictureOfTheScreenIntoTheBin)
{
    if (!std::getenv("OPENCL_LAYERS"))
        GTEST_SKIP() << "the suite brings a display";
    const Tq::Ptr<Editor> editor(new Editor(makeEditorState(bin(), Text())));
    editor->allowFiles({}, wide(home_.string() + "/"));
    press(*editor, 'g', Key::eControl);
    const MediaBin& after = editor->state().bin;
    ASSERT_EQ(after.items.size(), 3u) << narrow(editor->state().message);
    EXPECT_EQ(narrow(after.items.back().path), (home_ / "Screen.png").string());
    const Tq::Ptr<iHostImage> image = OS()->mediaServices()->loadImage(after.items.back().path);
    ASSERT_TRUE(image);
    EXPECT_GT(image->getSize().x, 100);
}

TEST_F(FilesTest, AFolderThatCannotBeMadeIsTold)
{
    std::ofstream(home_ / "file") << "not a folder";
    Text path;
    const EditorState state = makeEditorState({}, Text());
    EXPECT_NE(narrow(exportFrame(state, wide((home_ / "file/frames").string()), path))
                  .find("cannot be made"),
              std::string::npos);
    EXPECT_FALSE(exportFrame(state, Text(), path).empty());
}

TEST_F(FilesTest, AFailureNeverLosesTheOldPicture)
{
    const fs::path folder = home_ / "out";
    fs::create_directories(folder / "taken.png/inside");
    std::ofstream(folder / "old.png") << "old";
    const Tq::Ptr<iHostImage> image = OS()->mediaServices()->createHostSurface({8, 8});
    EXPECT_FALSE(savePicture(nullptr, wide((folder / "old.png").string())).empty());
    EXPECT_EQ(contentsOf(folder / "old.png"), "old");
    EXPECT_FALSE(savePicture(image, wide((folder / "taken.png").string())).empty());
    EXPECT_FALSE(savePicture(image, wide((folder / "old").string())).empty());
    EXPECT_EQ(entriesOf(folder), 2) << "no half-written file is left";
    EXPECT_TRUE(savePicture(image, wide((folder / "old.png").string())).empty());
    EXPECT_NE(contentsOf(folder / "old.png"), "old");
    EXPECT_EQ(entriesOf(folder), 2);
}

TEST(FileNameTest, AnyTextMakesAName)
{
    static const struct
    {
        const wchar_t* text;
        const wchar_t* name;
    } kCases[] = {
        {L"Harbour at Dawn", L"Harbour at Dawn"},
        {L"a/b:c\\d*e?f\"g<h>i|j", L"a-b-c-d-e-f-g-h-i-j"},
        {L"  ..hidden", L"hidden"},
        {L"..", L"Untitled"},
        {L"", L"Untitled"},
        {L" \t\n", L"Untitled"},
        {L"line\nend", L"line-end"},
        {L"\u00E4\u4E2D\U0001F600", L"\u00E4\u4E2D\U0001F600"},
    };
    for (const auto& c : kCases)
        EXPECT_EQ(narrow(fileNameOf(c.text)), narrow(c.name));
    EXPECT_LE(fileNameOf(Text(500, L'\U0001F600')).size(), 60u);
}

TEST_F(FilesTest, TheNextRunBeginsWhereTheLastOneEnded)
{
    const std::string folder = pictures().string();
    ASSERT_EQ(run("--size 1000x700 --seconds 1 '" + folder + "'").status, 0);
    const std::string first = contentsOf(settingsFile());
    for (const std::string& line :
         {std::string("Width=1000"), std::string("Height=700"), "Folder=" + folder})
        EXPECT_NE(first.find(line + "\n"), std::string::npos) << line << "\n" << first;
    EXPECT_NE(first.find("Zoom="), std::string::npos);
    ASSERT_EQ(run("--seconds 1").status, 0);
    EXPECT_EQ(contentsOf(settingsFile()), first);
    // A folder that is gone is forgotten for the sample media.
    fs::remove_all(pictures());
    ASSERT_EQ(run("--seconds 1").status, 0);
    EXPECT_EQ(contentsOf(settingsFile()).find("Folder="), std::string::npos);
}

TEST_F(FilesTest, WhatTheViewerShowsIsRemembered)
{
    fs::create_directories(settingsFile().parent_path());
    const std::string chosen = "FrameNumber=1\nLoop=1\nRate=4\nSafeAreas=0\nTimeCode=1\n"
                               "ViewerZoom=2\n";
    std::ofstream(settingsFile()) << "[Editor]\n" << chosen << "\n";
    ASSERT_EQ(run("--seconds 1").status, 0);
    for (const char* line :
         {"FrameNumber=1", "Loop=1", "Rate=4", "SafeAreas=0", "TimeCode=1", "ViewerZoom=2"})
        EXPECT_NE(contentsOf(settingsFile()).find(std::string(line) + "\n"), std::string::npos)
            << line;
    std::ofstream(settingsFile()) << "[Editor]\nRate=99\nViewerZoom=-3\nLoop=maybe\n\n";
    ASSERT_EQ(run("--seconds 1 --size 1000x700").status, 0);
    EXPECT_NE(contentsOf(settingsFile()).find("Rate=1\n"), std::string::npos);
    EXPECT_NE(contentsOf(settingsFile()).find("ViewerZoom=0\n"), std::string::npos);
}

TEST_F(FilesTest, FramesNeitherReadNorWriteSettings)
{
    const std::string frame = "--frame '" + (home_ / "frame.png").string() + "' ";
    ASSERT_EQ(run(frame).status, 0);
    EXPECT_FALSE(fs::exists(home_ / "Vantor"));
    const std::string plain = contentsOf(home_ / "frame.png");
    fs::create_directories(settingsFile().parent_path());
    std::ofstream(settingsFile()) << "[Editor]\nFolder=" << pictures().string()
                                  << "\nZoom=9\n\n[Window]\nHeight=700\nWidth=1000\n\n";
    ASSERT_EQ(run(frame).status, 0);
    EXPECT_TRUE(contentsOf(home_ / "frame.png") == plain);
}

TEST_F(FilesTest, DamagedSettingsDoNoHarm)
{
    fs::create_directories(settingsFile().parent_path());
    std::ofstream(settingsFile()) << "[Editor]\nZoom=nan\nFolder=\xFF\xFE\n[Window\n[Window]\n"
                                     "Width=99999999999\nHeight=-1\nLeft=x\nMaximised=7\n";
    EXPECT_EQ(run("--seconds 1").status, 0);
    EXPECT_NE(contentsOf(settingsFile()).find("Width=1280\n"), std::string::npos);
}

TEST_F(FilesTest, OnlyOneOfTwoInstancesRuns)
{
    const std::string program =
        "'" + std::string(VANTOR_PROGRAM) + "' --seconds 3 2>" + (home_ / "errors").string();
    // Whichever comes first runs; the shell collects both.
    const int status = std::system(
        ("env -u DISPLAY -u WAYLAND_DISPLAY sh -c \"" + program + "1 & one=\\$!; " + program +
         "2; two=\\$?; wait \\$one; echo \\$? \\$two >'" + (home_ / "statuses").string() + "'\"")
            .c_str());
    ASSERT_EQ(status, 0);
    const std::string statuses = contentsOf(home_ / "statuses");
    EXPECT_TRUE(statuses == "0 3\n" || statuses == "3 0\n") << statuses;
    const std::string errors = contentsOf(home_ / "errors1") + contentsOf(home_ / "errors2");
    EXPECT_NE(errors.find("vantor: Vantor is already running\n"), std::string::npos) << errors;
    // Pictures and help are for everybody.
    EXPECT_EQ(run("--help").status, 0);
}

} // namespace
} // namespace Vantor
