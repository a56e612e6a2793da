#include "simulator/trusim_framer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Texts = std::vector<std::string>;

TruSimFramer::Result FeedAll(TruSimFramer& framer, const std::string& bytes, Texts* out) {
    return framer.Feed(bytes.data(), bytes.size(), [out](std::string text) {
        out->push_back(std::move(text));
        return true;
    });
}

TEST(TruSimFramer, OneMessagePerZeroByteHoweverTheBytesArriveUntilTheHandlerStops) {
    const std::string stream("{\"Type\":\"ACK\"}\0\0{\"Type\":\"Pong\"}\0{\"Ty", 36);
    for (size_t piece = 1; piece <= stream.size(); ++piece) {
        TruSimFramer framer;
        Texts texts;
        for (size_t at = 0; at < stream.size(); at += piece) {
            ASSERT_EQ(FeedAll(framer, stream.substr(at, piece), &texts),
                      TruSimFramer::Result::kMore);
        }
        EXPECT_EQ(texts, (Texts{"{\"Type\":\"ACK\"}", "", "{\"Type\":\"Pong\"}"})) << piece;
        EXPECT_EQ(framer.PendingSize(), 4u);
    }
    // A handler that says stop (the link has ended) gets nothing more.
    TruSimFramer framer;
    Texts texts;
    const auto result = framer.Feed(stream.data(), stream.size(), [&](std::string text) {
        texts.push_back(text);
        return !text.empty();
    });
    EXPECT_EQ(result, TruSimFramer::Result::kStopped);
    EXPECT_EQ(texts, (Texts{"{\"Type\":\"ACK\"}", ""}));
}

}  // namespace
