// A file that is to replace another: its name on the way, what it remembers, and when it may take its place.
#include "imageio/NewFile.h"

#include <limits>

#include "tests/unit/imageio/Blocks.h"

namespace width {
namespace {

using NewFiles = ImageIo;

bool Write(NewFile& file, const std::string& text) {
    return file.Write(text.data(), text.size());
}

std::string Text(const fs::path& path) {
    const Bytes bytes = ReadAll(path);
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

TEST_F(NewFiles, TheNameOnTheWayIsNoLongerThanTheTargetsAndNeverTheSame) {
    for (const std::string name :
         {"a", "7", "a.bmp", "1.tif", "picture.png", "a name of more letters than any other needs.gif"}) {
        for (int i = 0; i < 20; ++i) {
            NewFile file(Path(name));
            ASSERT_TRUE(file.Create()) << name;
            const fs::path onTheWay = file.Path();
            EXPECT_EQ(onTheWay.parent_path(), m_folder);
            EXPECT_LE(onTheWay.filename().native().size(), name.size());
            EXPECT_FALSE(fs::exists(Path(name)));
            if (i % 2 == 0) {
                continue;
            }
            EXPECT_TRUE(Write(file, "whole") && file.Finish() && file.Commit());
            EXPECT_EQ(Text(Path(name)), "whole");
            fs::remove(Path(name));
        }
        EXPECT_TRUE(fs::is_empty(m_folder)) << name;
    }
}

// Ten names are all that a target of one letter leaves.
TEST_F(NewFiles, ANameThatIsTakenIsLeftAlone) {
    for (char c = '0'; c <= '8'; ++c) {
        std::ofstream(Path({c})) << c;
    }
    {
        NewFile last(Path("a"));
        ASSERT_TRUE(last.Create());
        EXPECT_EQ(last.Path(), Path("9"));
        NewFile none(Path("b"));
        EXPECT_FALSE(none.Create());
        EXPECT_NE(none.Error(), 0U);
    }
    for (char c = '0'; c <= '8'; ++c) {
        EXPECT_EQ(Text(Path({c})), std::string(1, c));
    }
    EXPECT_FALSE(fs::exists(Path("9")));
}

TEST_F(NewFiles, WritesAndReadsWhereItIsTold) {
    NewFile file(Path("a.bmp"));
    ASSERT_TRUE(file.Create() && Write(file, "0123456789"));
    file.Seek(3);
    EXPECT_TRUE(Write(file, "xyz"));
    EXPECT_EQ(file.Position(), 6U);
    EXPECT_EQ(file.Size(), 10U);
    char text[20] = {};
    EXPECT_EQ(file.Read(text, sizeof text), 4U) << "as far as the file goes";
    EXPECT_STREQ(text, "6789");
    file.Seek(12);
    EXPECT_TRUE(Write(file, "!"));
    EXPECT_EQ(file.Size(), 13U);
    EXPECT_TRUE(file.Resize(7));
    EXPECT_EQ(file.Size(), 7U);
    EXPECT_TRUE(file.Finish() && file.Commit());
    EXPECT_EQ(Text(Path("a.bmp")), "012xyz6");
}

TEST_F(NewFiles, AFileThatLostBytesOrFailedOnceNeverTakesItsPlace) {
    std::ofstream(Path("a.bmp")) << "old";
    {
        NewFile failed(Path("a.bmp"));
        ASSERT_TRUE(failed.Create() && Write(failed, "whole"));
        failed.Seek(std::numeric_limits<std::uint64_t>::max() / 2);  // where no file reaches
        EXPECT_FALSE(Write(failed, "x"));
        const SystemError nError = failed.Error();
        EXPECT_NE(nError, 0U);
        failed.Seek(0);
        EXPECT_FALSE(Write(failed, "whole") || failed.Resize(5) || failed.Finish() || failed.Commit());
        EXPECT_EQ(failed.Error(), nError) << "the first one";
    }
    NewFile gone(Path("none/a.bmp"));
    EXPECT_FALSE(gone.Create() || gone.Finish() || gone.Commit());
    NewFile folder(m_folder);
    EXPECT_FALSE(folder.Create());
    EXPECT_EQ(Text(Path("a.bmp")), "old");
    EXPECT_EQ(std::distance(fs::directory_iterator(m_folder), {}), 1);
}

}  // namespace
}  // namespace width
