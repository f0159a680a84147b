#include "support/text/table.h"

#include "common/heard.h"
#include "common/temp_file.h"

#include <gmock/gmock.h>

#include <chrono>

using namespace trelm;
using testing::HasSubstr;

namespace {

struct Read {
    Status status = Status::ok;
    std::string messages;
    TextTable table;
};

Read readTable(const std::string &text, float defNullValue = 9999.0f)
{
    const TempFile file(text);
    Read read;
    Heard heard;
    read.status = rdTable(file.name, read.table, defNullValue, heard.messages);
    read.messages = heard.err;
    return read;
}

std::vector<float> cells(const Read &read)
{
    const auto span = read.table.matrix.span();
    return {span.begin(), span.end()};
}

} // namespace

TEST(Table, CellsFollowTheGrammar)
{
    const std::string vars = "VARS A B\nFORMAT %s %4d\n";
    const struct {
        const char *why;
        std::string text;
        std::vector<float> expected;
        const char *message; ///< part of it, empty: none at all
    } cases[] = {
        {"declarations may follow the rows", "x 1\n\ny 2\nx 3\n" + vars, {0, 1, 1, 2, 0, 3}, ""},
        {"texts by column", "VARS A B\nFORMAT %s %s\nx y\nx x\n", {0, 0, 0, 1}, ""},
        {"line ends of other systems", "VARS A B\r\nFORMAT %s %d\r\nx 1\r\ny +2\r\n", {0, 1, 1, 2}, ""},
        {"only the first declaration counts", vars + "VARS C\nFORMAT %f\nx 1\n", {0, 1}, ""},
        {"lower-case keywords: no rows, no effect", vars + "nullvalue 1\nend\ndata x\n#c\nx 1\n", {0, 1}, ""},
        {"null value in a number", vars + "NULLVALUE -999\nx -999\n", {0, 9999}, ""},
        {"null string", vars + "NULLSTRING -\n- 1\nx 2\n", {nullTextCell, 1, 0, 2}, ""},
        {"last null declaration wins", vars + "NULLVALUE 1\nNULLVALUE 2\nx 1\nx 2\n", {0, 1, 0, 9999}, ""},
        {"null value without a number", vars + "NULLVALUE x\nx 0\n", {0, 0}, "Bad NULLVALUE:\nNULLVALUE x\n"},
        {"missing cell", vars + "x\n", {0, 0}, "RdTable Warning: Bad I-Item 2:\nx\n"},
        {"no number", vars + "x y\n", {0, 0}, "RdTable Warning: Bad I-Item 2:\nx y\n"},
        {"partial number", vars + "x 12abc\n", {0, 12}, ""},
        {"beyond int", vars + "x 99999999999\nx -99999999999\n", {0, 2147483648.0f, 0, -2147483648.0f}, ""},
        {"surplus words", vars + "x 1 2 3\n", {0, 1}, ""},
        {"no format: all real",
         "VARS A B\nx -1.5e1\n",
         {0, -15},
         "RdTable Warning: Bad F-Item 1:\nx -1.5e1\n"},
        {"missing text", "VARS A B\nFORMAT %d %s\n1\n", {1, 0}, "RdTable Warning: Bad T-Item 2:\n1\n"},
    };
    for (const auto &test : cases) {
        const Read read = readTable(test.text);
        EXPECT_EQ(read.status, Status::ok) << test.why;
        EXPECT_EQ(cells(read), test.expected) << test.why;
        EXPECT_THAT(read.messages, HasSubstr(test.message)) << test.why;
        EXPECT_EQ(read.messages.empty(), *test.message == '\0') << test.why << read.messages;
    }
}

TEST(Table, FaultsAreOneMessageAndFail)
{
    const struct {
        std::string text;
        const char *message;
    } cases[] = {
        {"", "RdTable Error: no entries in "},
        {"REMARK only\n", "RdTable Error: no entries in "},
        {"x 1\n", "RdTable Error: no variables found.\n"},
        {"VARS\nx 1\n", "RdTable Error: no variables found.\n"},
        {"VARS A B\nFORMAT %s\nx 1\n", "RdTable Error: VARS/FORMAT mismatch:\nVARS A B\nFORMAT %s\n"},
        {"VARS A\nTOLERANCE 1 2\n1\n", "RdTable Error: VARS/TOLERANCE mismatch:\nVARS A\nTOLERANCE 1 2\n"},
        {"VARS A\nFORMAT %8.3z\n1\n", "RdTable Error: bad format FORMAT %8.3z\n"},
        {std::string("VARS A\n1\n\0\n", 11), "Error reading "},
        {std::string(1 << 20, 'x'), "RdTable Error: no variables found.\n"},
    };
    for (const auto &test : cases) {
        const Read read = readTable(test.text);
        EXPECT_EQ(read.status, Status::failed) << test.message;
        EXPECT_THAT(read.messages, testing::StartsWith(test.message));
    }
}

TEST(Table, FewWordsCannotAskForAllMemory)
{
    const auto sparse = [](int count) { // so many columns, and so many rows of one word
        std::string text = "VARS";
        for (int i = 0; i < count; ++i)
            text += " A";
        text += "\nNULLSTRING x\nFORMAT";
        for (int i = 0; i < count; ++i)
            text += " %s";
        text += '\n';
        for (int i = 0; i < count; ++i)
            text += "x\n";
        return text;
    };
    EXPECT_EQ(readTable(sparse(5000)).messages, "RdTable error allocating data matrix.\n");
    EXPECT_EQ(readTable(sparse(100)).table.matrix.length(), 10000u);
}

TEST(Table, WhatIsNoFileFails)
{
    const struct {
        std::string name, message;
    } cases[] = {
        {"none.tab", "RdTable File open error: none.tab.\n"},
        {"", "RdTable File open error: .\n"},
        {std::string(5000, 'n'), "RdTable File open error: " + std::string(5000, 'n') + ".\n"},
        {"/", "Error reading /: Is a directory.\n"},
        {"/dev/zero", "Error reading /dev/zero: it holds binary data.\n"},
    };
    for (const auto &test : cases) {
        TextTable table;
        Heard heard;
        EXPECT_EQ(rdTable(test.name, table, 0.0f, heard.messages), Status::failed);
        EXPECT_EQ(heard.err, test.message);
    }
}

TEST(Table, ColumnsByName)
{
    const Read read = readTable("VARS RESID_I A A\n1 2 3\n");
    EXPECT_EQ(getTabVar(read.table.varInfo, "resid_i"), 0u);
    EXPECT_EQ(getTabVar(read.table.varInfo, "A"), 2u);
    EXPECT_EQ(getTabVar(read.table.varInfo, "RESID"), std::nullopt);
}

// A scan of the known texts for each cell would take minutes here, and so would a scan of the line for each
// word.
TEST(Table, ManyTextsAndManyColumnsStayFast)
{
    std::string text = "VARS A\nFORMAT %s\n", wide = "VARS", row = "\n";
    for (int i = 0; i < 200000; ++i)
        text += "t" + std::to_string(i) + "\n";
    for (int i = 0; i < 100000; ++i) {
        wide += " A";
        row += " 1";
    }
    const auto start = std::chrono::steady_clock::now();
    const Read tall = readTable(text);
    EXPECT_EQ(readTable(wide + row + "\n").table.matrix[99999], 1.0f);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    EXPECT_EQ(tabText(tall.table.varInfo[0], tall.table.matrix[199999]), "t199999");
    EXPECT_EQ(tabText(tall.table.varInfo[0], nullTextCell), "");
}
