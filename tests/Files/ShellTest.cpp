#include "OS/Mac/Core/PathText.h"
#include "OS/Mac/Files/FolderLocations.h"
#include "support/BackgroundThread.h"
#include "support/HomeFolder.h"

#include <OS.h>
#include <OS/Files/iFileManager.h>
#include <OS/Files/iShell.h>

#include <gtest/gtest.h>

#include <QStandardPaths>

#include <csignal>
#include <sstream>

namespace {

std::string location(int which)
{
    const auto folder = static_cast<iShell::eFolderLocation>(which);
    return OSInternal::pathToSystem(OS()->shell()->getFolderLocation(folder)).c_str();
}

std::string description()
{
    return OSInternal::pathToSystem(OS()->fileMgr()->getAppDescription()).c_str();
}

// A desktop whose opener writes its arguments, one a line, and what surrounds it into files.
class FakeDesktop : public HomeFolder
{
public:
    FakeDesktop()
    {
        std::filesystem::create_directory(path("bin"));
        write("bin/xdg-open", "#!/bin/sh\n"
                              "printf '%s\\n' \"$#\" \"$@\" > \"$0.new\"\n"
                              "ls -l /proc/$$/fd > \"$0.streams\"\n"
                              "cut -d' ' -f1,6 /proc/$$/stat > \"$0.session\"\n"
                              "mv \"$0.new\" \"$0.log\"\n");
        chmod(path("bin/xdg-open").c_str(), 0755);
        setenv("PATH", (path("bin") + ":" + path_).c_str(), 1);
    }
    ~FakeDesktop() { setenv("PATH", path_.c_str(), 1); }

    void removeOpener() const
    {
        std::filesystem::remove(path("bin/xdg-open"));
        setenv("PATH", path("bin").c_str(), 1);
    }
    // What the opener was started with, once it was.
    std::string arguments() const
    {
        waitUntil([&] { return std::filesystem::exists(path("bin/xdg-open.log")); });
        const std::string found = read("bin/xdg-open.log");
        std::filesystem::remove(path("bin/xdg-open.log"));
        return found;
    }

private:
    std::string path_ = std::getenv("PATH");
};

LightweightString<wchar_t> wide(const std::string& text)
{
    return OSInternal::textFromSystem(text);
}

std::string toolkits(QStandardPaths::StandardLocation which)
{
    return QStandardPaths::writableLocation(which).toStdString() + "/";
}

} // namespace

TEST(Shell, FindsTheFoldersOfAPlainHome)
{
    const HomeFolder home;
    const std::pair<int, std::string> expected[] = {
        {iShell::eDocuments, home.path("Documents/")},
        {iShell::eDesktop, home.path("Desktop/")},
        {iShell::eMovies, home.path("Videos/")},
        {iShell::eHome, home.path("")},
        {iShell::ePictures, home.path("Pictures/")},
        {iShell::eTemporary, "/tmp/"},
        {iShell::eApplicationData, home.path(".local/share/" + description() + "/")},
        {iShell::eFonts, home.path(".local/share/fonts/")},
        {iShell::ePreferences, home.path(description() + "/Preferences/")},
        {10, ""},
        {-1, ""},
    };
    for (const auto& [which, path] : expected)
        EXPECT_EQ(location(which), path) << which;
    EXPECT_TRUE(home.names().empty()) << "asking makes no folder";
}

TEST(Shell, FollowsTheEnvironment)
{
    const HomeFolder home;
    setenv("XDG_DATA_HOME", "/data", 1);
    setenv("TMPDIR", "/scratch/", 1);
    EXPECT_EQ(location(iShell::eFonts), "/data/fonts/");
    EXPECT_EQ(location(iShell::eApplicationData), "/data/" + description() + "/");
    EXPECT_EQ(location(iShell::eTemporary), "/scratch/");
    setenv("XDG_DATA_HOME", "relative", 1);
    EXPECT_EQ(location(iShell::eFonts), home.path(".local/share/fonts/")) << "has to be absolute";
    setenv("HOME", "/any\xFFwhere/", 1);
    EXPECT_EQ(location(iShell::eHome), "/any\xFFwhere/");
    EXPECT_EQ(location(iShell::eMovies), "/any\xFFwhere/Videos/");
    setenv("HOME", "/", 1);
    EXPECT_EQ(location(iShell::eHome), "/");
    unsetenv("HOME");
    const std::string account = location(iShell::eHome);
    EXPECT_TRUE(account.starts_with("/") && account.ends_with("/")) << account;
}

TEST(Shell, AgreesWithTheToolkitAboutTheUsersOwnFolders)
{
    const HomeFolder home;
    const char* files[] = {
        "XDG_VIDEOS_DIR=\"$HOME/My Films\"\nXDG_DESKTOP_DIR=\"/else/where\"\n",
        "# "
        "XDG_VIDEOS_DIR=\"$HOME/Not\"\nXDG_VIDEOS_DIR=\"$HOME/One\"\nXDG_VIDEOS_DIR=\"$HOME/"
        "Two\"\n",
        "XDG_PICTURES_DIR=\"$HOME/\"\nXDG_DOCUMENTS_DIR=\"$HOME\"\n",
        "",
    };
    std::filesystem::create_directory(home.path(".config"));
    for (const char* text : files) {
        home.write(".config/user-dirs.dirs", text);
        const auto same = [](std::string path) { // the toolkit may leave a doubled separator
            while (path.ends_with("//"))
                path.pop_back();
            return path;
        };
        EXPECT_EQ(location(iShell::eMovies), same(toolkits(QStandardPaths::MoviesLocation)))
            << text;
        EXPECT_EQ(location(iShell::eDesktop), same(toolkits(QStandardPaths::DesktopLocation)))
            << text;
        EXPECT_EQ(location(iShell::ePictures), same(toolkits(QStandardPaths::PicturesLocation)))
            << text;
        EXPECT_EQ(location(iShell::eDocuments), same(toolkits(QStandardPaths::DocumentsLocation)))
            << text;
    }
    home.write(".config/user-dirs.dirs",
               "XDG_VIDEOS_DIR=\"relative\"\nXDG_DESKTOP_DIR\nXDG_DOCUMENTS_DIR=\n");
    EXPECT_EQ(location(iShell::eMovies), home.path("Videos/")) << "has to be absolute";
    EXPECT_EQ(location(iShell::eDesktop), home.path("Desktop/"));
    EXPECT_EQ(location(iShell::eDocuments), home.path("Documents/"));

    EXPECT_EQ(FolderLocations::userFolder("XDG_X_DIR=\"$HOME/a\\\"b\\\\c\"", "X", "/h"),
              "/h/a\"b\\c");
    EXPECT_EQ(FolderLocations::userFolder("XDG_X_DIR=\"$HOMEWARD/a\"", "X", "/h"), "");
}

TEST(Shell, FindsTheApplicationsData)
{
    const HomeFolder home;
    const auto make = [&](const char* folder) {
        std::filesystem::create_directories(home.path(folder));
    };
    const auto dataFor = [&](const char* folder) -> std::string {
        return FolderLocations::resourcesFor(home.path(folder).c_str()).c_str();
    };
    make("tree/Shaders");
    make("usr/lib/arch");
    EXPECT_EQ(dataFor("tree/"), home.path("tree/"));
    EXPECT_EQ(dataFor("usr/lib/"), home.path("usr/share/vantor/"));
    make("usr/share/vantor");
    EXPECT_EQ(dataFor("usr/lib/"), home.path("usr/share/vantor/"));
    EXPECT_EQ(dataFor("usr/lib/arch/"), home.path("usr/share/vantor/"));

    const std::string found = location(iShell::eResources);
    EXPECT_TRUE(found.starts_with("/") && found.ends_with("/")) << found;
    setenv("VANTOR_DATA", home.path("chosen").c_str(), 1);
    EXPECT_EQ(location(iShell::eResources), home.path("chosen/"));
}

TEST(Shell, KeepsOneStoreForEachScope)
{
    const HomeFolder home; // for the stores, should this be the first test to ask for them
    iShell* shell = OS()->shell();
    std::array<iSettings*, 8> found{};
    std::atomic<std::size_t> next{0};
    BackgroundThreads askers(static_cast<int>(found.size()), [&] {
        const std::size_t mine = next.fetch_add(1);
        found[mine] = shell->getSettings(iSettings::eUser).get();
    });
    askers.join();
    for (const iSettings* one : found)
        EXPECT_EQ(one, found[0]);
    EXPECT_TRUE(found[0]);
    EXPECT_NE(shell->getSettings(iSettings::eGlobal).get(), found[0]);
    EXPECT_FALSE(shell->getSettings(static_cast<iSettings::eType>(2)));
    EXPECT_FALSE(shell->getSettings(static_cast<iSettings::eType>(-1)));
}

TEST(Shell, OpensDocumentsAndFoldersWithTheDesktopsProgram)
{
    const FakeDesktop desktop;
    iShell* shell = OS()->shell();
    for (const std::string name : {"plain", "two words; rm -rf $HOME", "-n", "\u00e9\xFF"}) {
        const std::string path = desktop.write(name, "text");
        EXPECT_TRUE(shell->viewDocument(wide(path)));
        EXPECT_EQ(desktop.arguments(), "1\n" + path + "\n");
        EXPECT_TRUE(shell->viewFolder(wide(path)));
        EXPECT_EQ(desktop.arguments(), "1\n" + desktop.path("") + "\n");
    }
    EXPECT_TRUE(shell->viewFolder(wide(desktop.path("bin"))));
    EXPECT_EQ(desktop.arguments(), "1\n" + desktop.path("bin") + "\n");

    const std::string before = std::filesystem::current_path();
    std::filesystem::current_path(desktop.path());
    EXPECT_TRUE(shell->viewDocument(L"-n"));
    EXPECT_EQ(desktop.arguments(), "1\n" + desktop.path("-n") + "\n") << "never an option";
    std::filesystem::current_path(before);

    for (const std::string missing : {"", "/no/such/file"}) {
        EXPECT_FALSE(shell->viewDocument(wide(missing)));
        EXPECT_FALSE(shell->viewFolder(wide(missing)));
    }
    desktop.removeOpener();
    EXPECT_FALSE(shell->viewDocument(wide(desktop.path("plain"))));
}

TEST(Shell, OpensAddressesButNoFilesAndNoOptions)
{
    const FakeDesktop desktop;
    iShell* shell = OS()->shell();
    for (const std::string address : {"https://example.org/a?b=c&d=$(e)#f", "mailto:a@example.org",
                                      "web+x.y-1:z", "//nas/films"}) {
        const bool isAddress = address[0] != '/';
        EXPECT_TRUE(isAddress ? shell->viewAddress(wide(address))
                              : shell->viewFolder(wide(address)));
        EXPECT_EQ(desktop.arguments(), "1\n" + (isAddress ? address : "smb:" + address) + "\n");
    }
    for (const std::string address :
         {"", "example.org", ":x", "/etc/passwd", "-x:y", "1a:b", "a b:c", "file:///etc/passwd",
          "FILE:/etc/passwd", "https://a\nb", "https://a\tb", "https://a\u0085b", "--help"})
        EXPECT_FALSE(shell->viewAddress(wide(address))) << address;
    EXPECT_FALSE(shell->viewAddress(LightweightString<wchar_t>(L"https://a\0b", 11)));
    EXPECT_FALSE(std::filesystem::exists(desktop.path("bin/xdg-open.log")));
}

TEST(Shell, LetsTheOpenerGoItsOwnWay)
{
    const FakeDesktop desktop;
    ASSERT_TRUE(OS()->shell()->viewAddress(L"https://example.org/"));
    desktop.arguments();
    const std::string streams = desktop.read("bin/xdg-open.streams");
    for (const char* stream : {" 0 -> /dev/null\n", " 1 -> ", " 2 -> /dev/null\n"})
        EXPECT_NE(streams.find(stream), streams.npos) << streams;
    pid_t id = 0, session = 0;
    std::istringstream(desktop.read("bin/xdg-open.session")) >> id >> session;
    EXPECT_EQ(id, session);
    EXPECT_TRUE(waitUntil([&] { return kill(id, 0) != 0; })) << "no zombie stays";
}
