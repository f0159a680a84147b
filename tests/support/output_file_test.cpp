// Results that replace those of an earlier run, or leave them alone.
#include "support/text/output_file.h"

#include "common/heard.h"
#include "common/temp_file.h"

#include <filesystem>
#include <fstream>

namespace trelm {
namespace {

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
                {"a failure before the result: kept", "w", "", "before", false},
                {"a failure later", "w", "new", "new", false},
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

TEST(OutputFile, AnOldResultThatWillNotGoIsNotContinued)
{
    const TempFile file("before");
    OutFile out;
    ASSERT_EQ(openOut(out, file.name, "w"), Status::ok);
    std::filesystem::remove(file.name);
    writeOut(out, "new");
    writeOut(out, "newer");
    Heard heard;
    EXPECT_EQ(closeOut(out, heard.messages), Status::failed);
    EXPECT_EQ(heard.err, "Error writing " + file.name + ".\n");
}

} // namespace
} // namespace trelm
