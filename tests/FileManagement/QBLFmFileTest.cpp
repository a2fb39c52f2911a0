#include "QBLCore/FileManagement/QBLFmFile.hpp"

#include <gtest/gtest.h>
#include <sys/mount.h>

#include "QBLCore/FileManagement/QBLFmFile64.hpp"
#include "tests/support/Child.hpp"
#include "tests/support/TempTree.hpp"

namespace {

template <class File>
struct QBLFmFileTest : ::testing::Test {
    static typename File::createmode mode(int flags) {
        return static_cast<typename File::createmode>(flags);
    }
    /// Returns the error number of an operation that has failed, or 0.
    static int errorOf(File& file, bool done) { return done ? 0 : file.getLastErrorNumber(); }
    TempTree tree;
    char buffer[16] = {};
};

typedef ::testing::Types<QBLFmFile, QBLFmFile64> Files;
TYPED_TEST_SUITE(QBLFmFileTest, Files);

}  // namespace

TYPED_TEST(QBLFmFileTest, ClosedFileDoesNothingAndKeepsErrno) {
    TypeParam file, other;
    errno = 77;
    EXPECT_TRUE(file.read(this->buffer, 1) == -1 && file.write("x", 1) == -1);
    EXPECT_EQ(-1, file.seek(0, TypeParam::end));
    EXPECT_EQ((std::is_same<TypeParam, QBLFmFile>::value ? -1 : 0), file.getLength());
    EXPECT_FALSE(file.flush() || file.truncate(0));
    EXPECT_EQ(-1, file.getFileDescriptor());
    EXPECT_TRUE(file.close());
    EXPECT_EQ(77, errno);
    EXPECT_EQ(0, file.getLastErrorNumber());
    EXPECT_FALSE(file.append(other) || file.open(nullptr, TypeParam::create, 0));
}

TYPED_TEST(QBLFmFileTest, WritesReadsAppendsAndTruncates) {
    const std::string path = this->tree("f");
    TypeParam file, other;
    EXPECT_EQ(ENOENT, this->errorOf(file, file.open(path.c_str(), TypeParam::existing, 0)));
    EXPECT_STREQ("No such file or directory", file.getLastErrorMessage());
    ASSERT_TRUE(file.open(path.c_str(), TypeParam::create | TypeParam::exclusive, 0));
    EXPECT_EQ(6, file.write("abcdef", 6));
    EXPECT_EQ(2, file.seek(-4, TypeParam::current));
    EXPECT_EQ(4, file.read(this->buffer, sizeof this->buffer));
    EXPECT_EQ(0, file.read(this->buffer, 1));
    EXPECT_EQ(6, file.getLength());
    EXPECT_TRUE(file.truncate(4));
    EXPECT_EQ(EINVAL, this->errorOf(file, file.truncate(-1)));
    EXPECT_TRUE(file.flush());
    EXPECT_EQ(-1, file.seek(-1, TypeParam::begin));
    ASSERT_TRUE(other.open(this->tree.file("empty").c_str(), TypeParam::existing, 1));
    EXPECT_TRUE(file.append(other));
    ASSERT_TRUE(other.open(path.c_str(), this->mode(O_WRONLY), 0))
        << "O_WRONLY opens for reading and writing";
    EXPECT_EQ(1, other.read(this->buffer, 1));
    EXPECT_TRUE(file.append(other)) << "the same file, without its first byte";
    EXPECT_TRUE(file.append(file)) << "at its end: nothing is appended";
    EXPECT_EQ("abcdbcd", this->tree.text("f"));
    EXPECT_EQ(4, file.seek(4, TypeParam::begin));
    EXPECT_TRUE(file.append(file));
    EXPECT_EQ("abcdbcdbcd", this->tree.text("f"));
    EXPECT_EQ(10, file.seek(0, TypeParam::current));
    ASSERT_TRUE(other.open(path.c_str(), TypeParam::existing, 1));
    EXPECT_EQ(EBADF, this->errorOf(other, other.write("x", 1) != -1));
    file.seek(0, TypeParam::begin);
    EXPECT_FALSE(other.append(file));
    EXPECT_TRUE(other.close());
    EXPECT_EQ(0, other.getLastErrorNumber());
}

TYPED_TEST(QBLFmFileTest, SupportsLengthsThatItsOffsetsCanExpress) {
    const std::string path = this->tree.file("large");
    ASSERT_EQ(0, truncate64(path.c_str(), 5000000000));
    TypeParam file;
    if (sizeof(file.getLength()) < sizeof(long long)) {
        EXPECT_EQ(EOVERFLOW, this->errorOf(file, file.open(path.c_str(), TypeParam::existing, 0)));
        ASSERT_TRUE(file.open(path.c_str(), this->mode(O_LARGEFILE), 0));
        EXPECT_EQ(EOVERFLOW, this->errorOf(file, file.getLength() != -1));
        return;
    }
    ASSERT_TRUE(file.open(path.c_str(), TypeParam::existing, 0));
    EXPECT_EQ(5000000000, static_cast<long long>(file.getLength()));
    EXPECT_EQ(5000000000, static_cast<long long>(file.seek(0, TypeParam::end)));
    EXPECT_EQ(1, file.write("x", 1));
    EXPECT_TRUE(file.truncate(static_cast<decltype(file.getLength())>(4999999999)));
    EXPECT_EQ(4999999999, static_cast<long long>(file.getLength()));
}

TYPED_TEST(QBLFmFileTest, WrapsStandardStreamsAndLeavesThemOpen) {
    TypeParam file;
    ASSERT_TRUE(file.open(TypeParam::standardoutput));
    EXPECT_EQ(1, file.getFileDescriptor());
    EXPECT_FALSE(file.truncate(0));
    EXPECT_TRUE(file.flush());
    EXPECT_TRUE(file.close());
    EXPECT_NE(-1, fcntl(1, F_GETFD));
    EXPECT_FALSE(file.open(static_cast<typename TypeParam::stdiotypes>(3)));
    const int status = inChild([this] {
        int ends[2];
        if (pipe(ends) != 0 || dup2(ends[0], 0) != 0) return 1;
        TypeParam input;
        if (!input.open(TypeParam::standardinput) || input.getFileDescriptor() != 0) return 2;
        if (input.seek(0, TypeParam::begin) != 0) return 3;
        if (write(ends[1], "y", 1) != 1 || input.read(this->buffer, 1) != 1) return 4;
        ::close(0);  // as daemons do
        TypeParam opened;
        if (!opened.open(this->tree.file("f").c_str(), TypeParam::existing, 0)) return 5;
        if (opened.getFileDescriptor() < 3 || fcntl(0, F_GETFD) != -1) return 6;
        // If the descriptor is already closed, close() fails, but the object is closed.
        ::close(opened.getFileDescriptor());
        if (opened.close() || opened.getLastErrorNumber() != EBADF) return 7;
        return opened.getFileDescriptor() == -1 && opened.close() ? 0 : 8;
    });
    EXPECT_EQ(0, status);
}

TYPED_TEST(QBLFmFileTest, ReportsAFullDisk) {
    TypeParam full, source;
    ASSERT_TRUE(source.open(this->tree.file("s", std::string(100000, 'x')).c_str(),
                            TypeParam::existing, 1));
    ASSERT_TRUE(full.open("/dev/full", TypeParam::existing, 0));
    EXPECT_EQ(ENOSPC, this->errorOf(full, full.write("x", 1) != -1));
    EXPECT_EQ(ENOSPC, this->errorOf(full, full.append(source)));
    const std::string small = this->tree.dir("small");
    if (mount("tmpfs", small.c_str(), "tmpfs", 0, "size=40k") == 0) {
        source.seek(0, TypeParam::begin);
        EXPECT_TRUE(full.open((small + "/f").c_str(), TypeParam::create, 0));
        EXPECT_EQ(ENOSPC, this->errorOf(full, full.append(source))) << "only a part fits";
        EXPECT_EQ(40960, full.getLength());
        full.close();
        umount(small.c_str());
    }
}
