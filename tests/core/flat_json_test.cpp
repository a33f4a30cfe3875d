// The flat reader of the realtime push: whatever it reads, it reads as cJSON does; the rest it
// declines, and cJSON decides.
#include <cjson/cJSON.h>
#include <gtest/gtest.h>

#include <string>

#include "qm_flat_json.h"

namespace {

using Kind = FlatJson::Kind;

Kind kind_of(const cJSON* v) {
    if (cJSON_IsFalse(v)) return Kind::kFalse;
    if (cJSON_IsTrue(v)) return Kind::kTrue;
    if (cJSON_IsNull(v)) return Kind::kNull;
    if (cJSON_IsNumber(v)) return Kind::kNumber;
    if (cJSON_IsString(v)) return Kind::kString;
    return cJSON_IsArray(v) ? Kind::kArray : Kind::kObject;
}

// The same value, member by member, with the same answers to a lookup by each key in upper case.
void expect_same(const cJSON* expected, FlatJson::Item actual, const std::string& where) {
    ASSERT_TRUE(actual) << where;
    ASSERT_TRUE(actual.is(kind_of(expected))) << where;
    EXPECT_EQ(actual.int_value(), expected->valueint) << where;
    EXPECT_EQ(actual.double_value(), expected->valuedouble) << where;
    EXPECT_STREQ(actual.text(), cJSON_IsString(expected) ? expected->valuestring : nullptr) << where;
    ASSERT_EQ(actual.size(), cJSON_GetArraySize(expected)) << where;
    FlatJson::Item a = actual.first();
    for (const cJSON* e = expected->child; e; e = e->next, a = a.next()) {
        expect_same(e, a, where + "/" + (e->string ? e->string : "[]"));
        if (!e->string) continue;
        std::string upper = e->string;
        for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        const cJSON* found = cJSON_GetObjectItem(expected, upper.c_str());
        const FlatJson::Item flat = actual.member(upper.c_str());
        ASSERT_TRUE(flat) << where << " " << upper;
        EXPECT_EQ(flat.is(Kind::kNumber) ? flat.int_value() : -1, cJSON_IsNumber(found) ? found->valueint : -1);
    }
}

TEST(FlatJson, WhatItReadsReadsAsCjsonReadsIt) {
    const char* const texts[] = {
        R"({"a":1,"b":[1,-2,3],"c":{"d":"text","e":true,"f":false,"g":null}})",
        " \t\r\n\x01{\"x\":[]}",             // every byte up to the space is a blank
        R"({"k":1} trailing [garbage)",      // cJSON reads one value and ignores the rest
        R"([-0,007,2147483647,2147483648,-2147483648,-2147483649,999999999999999])",  // saturated
        R"({"Key":1,"KEY":2,"key":3})",      // the first match in any case wins
        R"({"a":{},"b":[[[]]],"c":[{"d":[1,{"e":"f"}]}]})",
        R"(  "lone string" )",
        "42",
    };
    for (const char* text : texts) {
        cJSON* expected = cJSON_Parse(text);
        ASSERT_NE(expected, nullptr) << text;
        FlatJson flat;
        ASSERT_TRUE(flat.read(text)) << text;
        expect_same(expected, flat.root(), text);
        cJSON_Delete(expected);
    }
}

TEST(FlatJson, DeclinesEscapesFractionsLongNumbersDeepNestingAndWhatCjsonRefuses) {
    const std::string deep = std::string(40, '[') + std::string(40, ']');
    const std::string declined[] = {
        R"({"a":"x\"y"})", R"({"a\u0062":1})", R"({"a":1.5})", R"({"a":1e3})", R"({"a":1E+3})",
        R"({"a":1234567890123456})", "\xEF\xBB\xBF{\"a\":1}", deep,
        // Not JSON at all: cJSON refuses these too.
        R"({"a":1,})", R"({"a" 1})", R"([1 2])", R"({"a":-})", R"({"a":+1})", R"({"a":tru})", "", "{",
        R"({"a":"unterminated)", R"({'a':1})", R"([1,2)",
    };
    for (const std::string& text : declined) {
        FlatJson flat;
        EXPECT_FALSE(flat.read(text.c_str())) << text;
    }
    FlatJson flat;
    EXPECT_FALSE(flat.read(nullptr));
    std::string many = "[";
    for (int i = 0; i < 2000; ++i) many += "1,";
    many += "1]";
    EXPECT_FALSE(flat.read(many.c_str())) << "more values than the table holds";
}

}  // namespace
