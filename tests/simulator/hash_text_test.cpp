#include "simulator/hash_text.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string Hash(const std::string& text, int selector) {
    return GetHashText(text.data(), text.size(), selector);
}

TEST(HashText, KnownVectors) {
    EXPECT_EQ(Hash("abc", 0), "a9993e364706816aba3e25717850c26c9cd0d89d");
    EXPECT_EQ(Hash("abc", 1), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(Hash("abc", 2), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(Hash("", 1), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(GetHashText(nullptr, 0, 0), "da39a3ee5e6b4b0d3255bfef95601890afd80709");
    // A zero byte inside the data is hashed like any other.
    EXPECT_EQ(Hash(std::string("a\0b", 3), 1), "70350f6027bce3713f6b76473084309b");
    // The challenge answer: challenge immediately followed by the key.
    EXPECT_EQ(Hash("abcQm7Hd2KpVx9LtR4sNw8ZbC3jFy6GaE1uTo5XkWi0MnBvPr2D", 1),
              "847ac550e2691a368685df0000a20d01");
}

TEST(HashText, UnknownSelectorsGiveNothingAndTrueIsAnyCase) {
    EXPECT_EQ(Hash("abc", 3), "");
    EXPECT_EQ(Hash("abc", -1), "");
    EXPECT_EQ(GetHashText(nullptr, 4, 1), "");
    EXPECT_TRUE(IsTrueString("tRuE"));
    EXPECT_FALSE(IsTrueString("true "));
    EXPECT_FALSE(IsTrueString("1"));
}

}  // namespace
