// The account of the allocation layer: what a leak, a double release or a wrong size would change.
#include "ground/alloc.h"
#include "ground/trelm.h"

#include <gtest/gtest.h>

#include <string>

namespace trelm {
namespace {

TEST(Alloc, BlocksGiveBackWhatTheyAskedFor)
{
    const std::int64_t before = allocBytesUsed();
    {
        Block<float> floats("matrix", 100);
        EXPECT_EQ(allocBytesUsed() - before, 400);
        ASSERT_TRUE(floats.grow("matrix", 150));
        EXPECT_EQ(allocBytesUsed() - before, 600);
        EXPECT_EQ(floats[149], 0.0f);
        Block<std::string> texts("matrix", 3);
        texts[2] = std::string(100, 'x');
        ASSERT_TRUE(texts.grow("matrix", 5));
        EXPECT_EQ(texts[2], std::string(100, 'x'));
        const Block<std::string> taken = std::move(texts);
        EXPECT_EQ(taken.length(), 5u);
        EXPECT_EQ(texts.length(), 0u); // NOLINT(bugprone-use-after-move): a moved block is empty
        Block<float> other("matrix", 7);
        other = std::move(floats);
        EXPECT_EQ(other.length(), 150u);
    }
    EXPECT_EQ(allocBytesUsed(), before);
}

TEST(Alloc, GrowthCountsTheOldSizeAsReused)
{
    const std::int64_t reused = allocBytesReused();
    char *block = charReMalloc("token", nullptr, 10, 99); // nothing there yet: the old size counts as 0
    block = charReMalloc("token", block, 30, 10);
    EXPECT_EQ(allocBytesReused() - reused, 10);
    unAlloc("token", block, 30);
}

TEST(Alloc, MatrixAccountStaysHighOnPurpose)
{
    const std::int64_t before = allocBytesUsed();
    float **matrix = matAlloc("matrix", 5, 3);
    ASSERT_NE(matrix, nullptr);
    EXPECT_EQ(matrix[2], matrix[0] + 10);
    EXPECT_EQ(allocBytesUsed() - before, (15 + 3) * 4 + 15 * 4 + 3 * 4);
    matFree(matrix, 5, 3);
    EXPECT_EQ(allocBytesUsed() - before, (15 + 3) * 4);
}

TEST(Alloc, TraceAndNullPointers)
{
    const std::int64_t before = allocBytesUsed();
    testing::internal::CaptureStderr();
    setAlloc(1);
    char *copy = strDup("six");
    strFree(copy);
    unAlloc("dc", nullptr, 12);
    setAlloc(0);
    const std::string trace = testing::internal::GetCapturedStderr();
    EXPECT_NE(trace.find("\n_MEM CHR_ALLOC Name: strDup Alloc: 0x"), std::string::npos) << trace;
    EXPECT_NE(trace.find(" Add: 4 Now: "), std::string::npos) << trace;
    EXPECT_NE(trace.find("\n_MEM DEALLOC Name: strDup Free: 0x"), std::string::npos) << trace;
    EXPECT_NE(trace.find("\n_MEM NOOP_AL Name: dc Free: (nil) Delete: 12 Now: "), std::string::npos) << trace;
    EXPECT_EQ(allocBytesUsed(), before);
}

TEST(Alloc, ARequestBeyondAllNumbersIsTold)
{
    const std::int64_t before = allocBytesUsed();
    volatile std::size_t tooLarge = std::size_t{1} << 61; // volatile: the compiler would warn
    testing::internal::CaptureStderr();
    const Block<double> block("matrix", tooLarge);
    const Block<std::string> texts("matrix", tooLarge);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Memory allocation failure.\nMemory allocation failure.\n");
    EXPECT_FALSE(block);
    EXPECT_FALSE(texts);
    EXPECT_EQ(allocBytesUsed(), before);
}

TEST(Trelm, FixedAminoAcidsLookAtTheLargerResidue)
{
    const int list[] = {4, 9, 12};
    EXPECT_EQ(chkFixAa(3, list, 9, 3), 1);
    EXPECT_EQ(chkFixAa(3, list, 9, 10), 0);
    EXPECT_EQ(chkFixAa(3, list, 12, 12), 1);
    EXPECT_EQ(chkFixAa(1, list, 9, 3), 0);
    EXPECT_EQ(chkFixAa(0, list, 4, 4), 0);
}

} // namespace
} // namespace trelm
