// The folder for offered files: used, made, or refused.

#include "src/Dialog/fileTransferDialogs.h"
#include "src/support.h"
#include "tests/support/temporaryFolder.h"

#include <gtest/gtest.h>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

struct stat statusOf(const std::string &path)
{
    struct stat status = {};
    EXPECT_EQ(lstat(path.c_str(), &status), 0) << path;
    return status;
}

OwnedText create(const std::string &path, const char *user)
{
    return OwnedText(create_download_folder(path.c_str(), user));
}

/// Somebody else's account when the test may change owners, else the own one.
const struct passwd *anAccount()
{
    return geteuid() == 0 ? getpwnam("nobody") : getpwuid(geteuid());
}

} // namespace

TEST(DownloadFolder, IsMadeForItsUser)
{
    const TemporaryFolder folder;
    const std::string path = folder.file("Downloads");
    const std::string user = anAccount()->pw_name;
    const uid_t owner = anAccount()->pw_uid;
    umask(022);
    EXPECT_STREQ(create(path, user.c_str()).get(), path.c_str());
    EXPECT_EQ(statusOf(path).st_mode & 07777, mode_t(0755));
    EXPECT_EQ(statusOf(path).st_uid, owner);
}

TEST(DownloadFolder, ThatIsThereKeepsItsOwner)
{
    const TemporaryFolder folder;
    EXPECT_STREQ(create(folder.path(), "nobody").get(), folder.path().c_str());
    EXPECT_EQ(statusOf(folder.path()).st_uid, geteuid());
}

TEST(DownloadFolder, OfAnUnknownUserIsMadeAllTheSame)
{
    const TemporaryFolder folder;
    ::testing::internal::CaptureStderr();
    EXPECT_STREQ(create(folder.file("new"), "no-such-user").get(), folder.file("new").c_str());
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "create_download_folder: user 'no-such-user' not found\n");
    EXPECT_TRUE(S_ISDIR(statusOf(folder.file("new")).st_mode));
}

TEST(DownloadFolder, IsRefusedWhereAFileStands)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("Downloads", "a file");
    ::testing::internal::CaptureStderr();
    EXPECT_FALSE(create(path, "nobody"));
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), path + " exists but is not a directory\n");
}

TEST(DownloadFolder, NeedsAPathAndAUser)
{
    const TemporaryFolder folder;
    EXPECT_FALSE(create_download_folder(nullptr, "nobody"));
    EXPECT_FALSE(create(folder.path(), nullptr));
    EXPECT_FALSE(create(folder.path(), ""));
}

TEST(DownloadFolder, BelowNothingOrAFileIsReported)
{
    const TemporaryFolder folder;
    ::testing::internal::CaptureStderr();
    EXPECT_FALSE(create(folder.file("missing/Downloads"), "nobody"));
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "mkdir: No such file or directory\n");
    folder.write("file", "x");
    ::testing::internal::CaptureStderr();
    EXPECT_FALSE(create(folder.file("file/Downloads"), "nobody"));
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "stat: Not a directory\n");
}

TEST(DownloadFolder, BehindADanglingLinkIsARace)
{
    const TemporaryFolder folder;
    const std::string link = folder.file("link");
    ASSERT_EQ(symlink("nowhere", link.c_str()), 0);
    ::testing::internal::CaptureStderr();
    EXPECT_FALSE(create(link, "nobody"));
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "mkdir race: " + link + " was created but is not dir\n");
}
