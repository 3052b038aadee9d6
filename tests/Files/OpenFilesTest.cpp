#include "OS/Host/Desktop/OpenFiles.h"
#include "support/HostTree.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

class OpenFilesTest : public testing::Test
{
protected:
    OpenFilesTest()
    {
        tree_.write("/share/a folder/clip", "rushes");
        tree_.write("/share2/clip", "rushes");
    }

    HostTree tree_;
    const std::string folder_ = tree_.path() + "/share";
    const std::string file_ = folder_ + "/a folder/clip";
};

} // namespace

TEST_F(OpenFilesTest, SeesWhatThisProcessHolds)
{
    const int neighbour = open((tree_.path() + "/share2/clip").c_str(), O_RDONLY | O_CLOEXEC);
    EXPECT_FALSE(OSInternal::isInUse(folder_)) << "only its neighbour is";
    close(neighbour);
    const int file = open(file_.c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_GE(file, 0);
    EXPECT_TRUE(OSInternal::isInUse(folder_));
    void* pages = mmap(nullptr, 6, PROT_READ, MAP_PRIVATE, file, 0);
    close(file);
    EXPECT_TRUE(OSInternal::isInUse(folder_)) << "a mapping outlives its descriptor";
    munmap(pages, 6);
    EXPECT_FALSE(OSInternal::isInUse(folder_));
}

TEST_F(OpenFilesTest, SeesWhoWorksThere)
{
    int gate[2];
    int ready[2];
    ASSERT_EQ(pipe2(gate, O_CLOEXEC), 0);
    ASSERT_EQ(pipe2(ready, O_CLOEXEC), 0);
    const pid_t child = fork();
    if (child == 0) {
        char byte = chdir(folder_.c_str()) == 0 ? 1 : 0;
        close(gate[1]);
        _exit(write(ready[1], &byte, 1) == 1 && read(gate[0], &byte, 1) == 0 ? 0 : 1);
    }
    char byte = 0;
    EXPECT_EQ(read(ready[0], &byte, 1), 1);
    EXPECT_EQ(byte, 1);
    EXPECT_TRUE(OSInternal::isInUse(folder_));
    for (const int end : {gate[0], gate[1], ready[0], ready[1]})
        close(end);
    waitpid(child, nullptr, 0);
    EXPECT_FALSE(OSInternal::isInUse(folder_));
}
