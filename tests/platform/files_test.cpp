#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include "platform/access_rights.h"
#include "platform/file_access.h"
#include "platform/file_replace.h"
#include "platform/folders.h"
#include "services/service_test.h"

inline namespace tvmath {
namespace {

TEST(OpenFile, DeniesWritersWhileItIsOpen) {
    temporary_folder folder;
    write_bytes(folder / "a", "text");
    {
        open_file const reader(folder / "a", file_use::read), second(folder / "a", file_use::read_or_create);
        EXPECT_TRUE(reader.is_open() && second.is_open());
        open_file const writer(folder / "a", file_use::write);
        EXPECT_FALSE(writer.is_open());
        EXPECT_FALSE(writer.failure().empty());
        EXPECT_EQ(read_bytes(folder / "a"), "text");  // not cut before it was refused
    }
    open_file const writer(folder / "a", file_use::write);
    EXPECT_TRUE(writer.is_open());
    EXPECT_FALSE(open_file(folder / "a", file_use::read).is_open());
    EXPECT_EQ(read_bytes(folder / "a"), "");
}

TEST(OpenFile, TakesRegularFilesAlone) {
    temporary_folder folder;
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0666), 0);
    fs::create_symlink("nowhere/at/all", folder / "link");
    for (char const* const name : {"pipe", "link", "", "missing/a"}) {
        for (file_use const use :
             {file_use::read, file_use::read_or_create, file_use::write, file_use::append}) {
            open_file const file(folder / name, use);
            EXPECT_FALSE(file.is_open()) << name;
            EXPECT_FALSE(file.failure().empty());
        }
    }
    write_bytes(folder / "file", "");  // nobody leads the library's writing elsewhere by a link
    fs::create_symlink("file", folder / "to file");
    EXPECT_TRUE(open_file(folder / "to file", file_use::read).is_open());
    EXPECT_FALSE(open_file(folder / "to file", file_use::write).is_open());
    EXPECT_FALSE(open_file(folder / "to file", file_use::append).is_open());
    EXPECT_FALSE(open_file(folder / "new", file_use::read).is_open());
    EXPECT_FALSE(fs::exists(folder / "new"));
}

// A limit of the file size is a failed write, with the signal that goes with it neither deadly nor left over.
TEST(OpenFile, ReportsAFullDisk) {
    temporary_folder folder;
    EXPECT_TRUE(in_fresh_process([&] {
        rlimit const limit{100, 100};
        ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
        open_file file(folder / "a", file_use::write);
        EXPECT_TRUE(file.write(std::string(60, 'x').data(), 60));
        EXPECT_FALSE(file.write(std::string(60, 'x').data(), 60));
        EXPECT_FALSE(file.failure().empty());
        sigset_t blocked, pending;
        ::pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
        ::sigpending(&pending);
        EXPECT_EQ(sigismember(&blocked, SIGXFSZ) + sigismember(&pending, SIGXFSZ), 0);
    }));
}

TEST(ReplaceFile, KeepsTheOldOneUnderTheNameGiven) {
    for (fs::path const& place : {fast_folder(), fs::temp_directory_path()}) {
        temporary_folder folder(place);
        auto const replace = [&](char const* kept) {
            write_bytes(folder / "fresh", "new");
            return replace_file(folder / "fresh", folder / "target", *kept ? folder / kept : fs::path());
        };
        EXPECT_TRUE(replace("kept"));  // nothing to keep
        EXPECT_FALSE(fs::exists(folder / "kept"));
        write_bytes(folder / "target", "old");
        write_bytes(folder / "kept", "older");
        EXPECT_TRUE(replace("kept"));
        EXPECT_EQ(read_bytes(folder / "target") + read_bytes(folder / "kept"), "newold");
        EXPECT_TRUE(replace(""));
        EXPECT_EQ(read_bytes(folder / "target") + read_bytes(folder / "kept"), "newold");
        EXPECT_FALSE(fs::exists(folder / "fresh"));
        EXPECT_FALSE(replace_file(folder / "fresh", folder / "target", folder / "kept"));
        EXPECT_EQ(read_bytes(folder / "target") + read_bytes(folder / "kept"), "newold");
    }
}

// An access list as the file system stores it: version 2, then (tag, permissions, id) for the owner, a user,
// the group, the mask and all others.
std::string access_list_of_user(unsigned char user) {
    unsigned char const bytes[] = {2, 0,    0,   0,   1,   0,   6,  0, 255, 255, 255, 255, 2,   0,  6,
                                   0, user, 0,   0,   0,   4,   0,  4, 0,   255, 255, 255, 255, 16, 0,
                                   6, 0,    255, 255, 255, 255, 32, 0, 4,   0,   255, 255, 255, 255};
    return std::string(reinterpret_cast<char const*>(bytes), sizeof bytes);
}

TEST(AccessRights, GoFromFileToFile) {
    temporary_folder folder;
    write_bytes(folder / "from", "");
    write_bytes(folder / "to", "");
    fs::permissions(folder / "from", fs::perms(0640));
    access_rights plain, listed, got;
    ASSERT_EQ(read_access_rights(folder / "from", plain), 0);
    EXPECT_EQ(plain.mode, 0640u);
    EXPECT_NE(read_access_rights(folder / "missing", got), 0);
    EXPECT_NE(set_access_rights(folder / "missing", plain), 0);

    std::string const list = access_list_of_user(7);
    if (::setxattr((folder / "from").c_str(), "system.posix_acl_access", list.data(), list.size(), 0) == 0) {
        ASSERT_EQ(read_access_rights(folder / "from", listed), 0);
        EXPECT_EQ(listed.access_list, list);
        ASSERT_EQ(set_access_rights(folder / "to", listed), 0);
        ASSERT_EQ(read_access_rights(folder / "to", got), 0);
        EXPECT_EQ(got.access_list, list);
    }
    ASSERT_EQ(set_access_rights(folder / "to", plain), 0);
    ASSERT_EQ(read_access_rights(folder / "to", got), 0);
    EXPECT_TRUE(got.access_list.empty());
    EXPECT_EQ(got.mode, 0640u);
    ASSERT_EQ(set_access_rights(folder / "", plain), 0);
    EXPECT_EQ(fs::status(folder / "").permissions(), fs::perms(0750));  // or nobody could look into it
}

// Within a volume and from one to another, if there are two here.
TEST(MoveFile, TakesFilesAndFolders) {
    temporary_folder from(fs::temp_directory_path()), near(fs::temp_directory_path()), far;
    for (temporary_folder const* to : {&near, &far}) {
        write_bytes(from / "a", "text");
        write_bytes(from / "b/c", "inner");
        write_bytes(*to / "there", "kept");
        EXPECT_TRUE(move_file(from / "a", *to / "new"));
        EXPECT_TRUE(move_file(from / "b", *to / "b"));
        EXPECT_EQ(read_bytes(*to / "new") + read_bytes(*to / "b/c"), "textinner");
        EXPECT_TRUE(fs::is_empty(from / ""));
        EXPECT_FALSE(move_file(from / "a", *to / "other"));
        write_bytes(from / "a", "text");
        EXPECT_FALSE(move_file(from / "a", *to / "there"));
        EXPECT_EQ(read_bytes(from / "a") + read_bytes(*to / "there"), "textkept");
    }
    // A copy that fails half-way leaves nothing under the new name.
    write_bytes(from / "long", std::string(100000, 'x'));
    EXPECT_TRUE(in_fresh_process([&] {
        ::signal(SIGXFSZ, SIG_IGN);
        rlimit const limit{50000, 50000};
        ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
        bool const moved = move_file(from / "long", far / "long");
        EXPECT_EQ(fs::exists(far / "long"), moved);
    }));
    EXPECT_EQ(read_bytes(from / "long").size() + read_bytes(far / "long").size(), 100000u);
}

}  // namespace
}  // namespace tvmath
