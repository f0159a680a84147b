// Results that replace those of an earlier run, or leave them alone.
#include "support/text/output_file.h"

#include "common/file_text.h"
#include "common/heard.h"
#include "common/temp_file.h"

#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace trelm {
namespace {

namespace fs = std::filesystem;

std::string contentOf(const TempFile &file)
{
    return {std::istreambuf_iterator(std::ifstream(file.name).rdbuf()), {}};
}

TEST(OutputFile, TheOldResultGoesWhenThereIsANewOne)
{
    const struct {
        const char *why, *access, *text, *content;
        bool isClosed;
    } rows[] = {{"replaced", "w", "new", "new", true},
                {"no result: emptied", "w", "", "", true},
                {"a failure: kept", "w", "new", "before", false},
                {"continued", "a", "new", "beforenew", true},
                {"nothing to add", "a", "", "before", true}};
    for (const auto &row : rows) {
        const TempFile file("before");
        Heard heard;
        {
            OutFile out;
            ASSERT_EQ(openOut(out, file.name, row.access), Status::ok);
            EXPECT_EQ(contentOf(file), "before");
            writeOut(out, row.text);
            writeOut(out, "");
            EXPECT_EQ(row.isClosed ? closeOut(out, heard.messages) : Status::ok, Status::ok);
        }
        EXPECT_EQ(contentOf(file), row.content) << row.why;
    }
}

TEST(OutputFile, NothingIsLeftBeside)
{
    const fs::path folder = fs::path(testing::TempDir()) / ("beside" + std::to_string(getpid()));
    fs::create_directories(folder / "real");
    std::ofstream(folder / "real" / "file") << "before";
    fs::permissions(folder / "real" / "file", fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink("real/file", folder / "link");
    const auto write = [&](bool isStrict, bool isLost) {
        Heard heard;
        OutFile out;
        EXPECT_EQ(openOut(out, folder / "link", "w"), Status::ok);
        writeOut(out, isStrict ? "strict" : "new");
        if (isStrict) {
            heard.messages.setStrict();
            heard.messages.warn("odd\n");
        }
        if (isLost)
            fs::remove_all(folder / "real");
        const Status status = closeOut(out, heard.messages);
        EXPECT_EQ(heard.err, isLost     ? "Error writing " + (folder / "link").string() + ".\n"
                             : isStrict ? "odd\n"
                                        : "");
        return status;
    };
    EXPECT_EQ(write(false, false), Status::ok);
    EXPECT_EQ(write(true, false), Status::ok);
    EXPECT_EQ(fileText(folder / "link"), "new");
    EXPECT_TRUE(fs::is_symlink(folder / "link"));
    EXPECT_EQ(fs::status(folder / "link").permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder / "real"), {}), 1);
    EXPECT_EQ(write(false, true), Status::failed);
    fs::remove_all(folder);
}

} // namespace
} // namespace trelm
