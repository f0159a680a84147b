// The account of the allocation layer: what a leak, a double release or a wrong size would change.
#include "ground/alloc.h"

#include "common/said.h"

#include <array>
#include <regex>
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

TEST(Alloc, GrowthCountsTheOldSizeAsReusedAndDoubles)
{
    const std::int64_t reused = allocBytesReused();
    void *block = voidReMalloc("token", nullptr, 10, 99); // nothing there yet: the old size counts as 0
    block = voidReMalloc("token", block, 30, 10);
    EXPECT_EQ(allocBytesReused() - reused, 10);
    unAlloc("token", block, 30);
    Block<char> room;
    for (const auto &[used, extra, length] : {std::array{0, 1, 8}, {7, 1, 8}, {8, 1, 16}, {16, 50, 66}}) {
        ASSERT_TRUE(
            makeRoom(room, "token", static_cast<std::size_t>(used), static_cast<std::size_t>(extra), 8));
        EXPECT_EQ(room.length(), static_cast<std::size_t>(length)) << used;
    }
}

TEST(Alloc, TraceAndNullPointers)
{
    const std::int64_t before = allocBytesUsed();
    const std::string trace = said([] {
                                  setAlloc(1);
                                  unAlloc("strDup", charMalloc("strDup", 4), 4);
                                  unAlloc("dc", nullptr, 12);
                                  unAlloc("token", voidReMalloc("token", nullptr, 10, 99), 10);
                                  setAlloc(0);
                              }).err;
    const auto added = [&](int bytes) { return " Now: " + std::to_string(before + bytes) + "\n"; };
    const std::string freed =
        " Now: " + std::to_string(before) + " Reused: " + std::to_string(allocBytesReused()) + "\n";
    EXPECT_EQ(std::regex_replace(trace, std::regex("0x[0-9a-f]+"), "PLACE"),
              "\n_MEM CHR_ALLOC Name: strDup Alloc: PLACE Add: 4" + added(4) +
                  "\n_MEM DEALLOC Name: strDup Free: PLACE Delete: 4" + freed +
                  "\n_MEM NOOP_AL Name: dc Free: (nil) Delete: 12" + freed +
                  "\n_MEM CHR_RE_AL Name: token Free: (nil) Alloc: PLACE Add: 10 Delete: 0" + added(10) +
                  "\n_MEM DEALLOC Name: token Free: PLACE Delete: 10" + freed);
    EXPECT_EQ(allocBytesUsed(), before);
}

TEST(Alloc, ARequestBeyondAllNumbersIsTold)
{
    const std::int64_t before = allocBytesUsed();
    volatile std::size_t tooLarge = std::size_t{1} << 61; // volatile: the compiler would warn
    const auto ask = [&] {
        EXPECT_FALSE(Block<double>("matrix", tooLarge));
        EXPECT_FALSE(Block<std::string>("matrix", tooLarge));
    };
    EXPECT_EQ(said(ask).err, "Memory allocation failure.\nMemory allocation failure.\n");
    EXPECT_EQ(allocBytesUsed(), before);
}

} // namespace
} // namespace trelm
