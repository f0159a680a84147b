#include "support/text/json_writer.h"

#include <gtest/gtest.h>

#include <limits>

namespace trelm {
namespace {

TEST(JsonWriter, KeepsTextsAndNumbersThatCannotStandAsTheyAre)
{
    std::string text;
    JsonWriter json(text);
    json.object();
    json.member("a\"b", "tab\t, \\, \xc3\xa9, \xff, \xed\xa0\x80, cut \xe2\x82");
    json.member("single", 0.1f);
    json.member("double", 0.1);
    json.member("none", std::numeric_limits<double>::quiet_NaN());
    json.key("empty").array();
    json.end();
    json.numbers("list", std::vector<int>{1, -2});
    json.end();
    const std::string lost = "\xef\xbf\xbd";
    EXPECT_EQ(text, "{\n \"a\\\"b\": \"tab\\u0009, \\\\, \xc3\xa9, " + lost + ", " + lost + lost + lost +
                        ", cut " + lost + lost +
                        "\",\n \"single\": 0.1,\n \"double\": 0.1,\n \"none\": null,\n \"empty\": [],\n"
                        " \"list\": [1, -2]\n}\n");
}

} // namespace
} // namespace trelm
