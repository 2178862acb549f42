#include "arborist/deduction/error_ids.h"

#include <string>

#include <gtest/gtest.h>

#include "tests/support/tree_builder.h"

namespace {

constexpr auto TRUE = EventStatus::TRUE;

bool AreUnambiguous(const EventList& events)
{
    ErrorIds::Indexes inError;
    for (std::size_t event = 0; event < events.size(); ++event) {
        if (IsError(events[event]->GetResult())) {
            inError.push_back(event);
        }
    }
    return ErrorIds().AreUnambiguous(events, inError);
}

// Enough events that pairs are not compared one by one.
EventList Crowd()
{
    EventList events;
    for (int event = 0; event < 200; ++event) {
        events.push_back(Leaf("E" + std::to_string(event), event % 4 == 0 ? TRUE : EventStatus::FALSE));
    }
    return events;
}

TEST(ErrorIdsTest, ASeparatorIsSeenWhereverItStands)
{
    for (std::size_t length = 1; length <= 20; ++length) {
        for (std::size_t position = 0; position < length; ++position) {
            for (const char letter : {'/', '&', '.', '0', '\'', '%'}) {
                std::string id(length, 'x');
                id[position] = letter;
                EXPECT_EQ(AreUnambiguous({Leaf("A", TRUE), Leaf(id)}), letter != '/' && letter != '&') << id;
            }
        }
    }
}

TEST(ErrorIdsTest, BytesNextToASeparatorsOwnAreNone)
{
    for (int byte = 1; byte < 256; ++byte) {
        const std::string id{static_cast<char>(byte), '\x01', static_cast<char>(0xAF), static_cast<char>(0xA6)};
        EXPECT_EQ(AreUnambiguous({Leaf("A", TRUE), Leaf(id)}), byte != '/' && byte != '&') << byte;
    }
}

TEST(ErrorIdsTest, AnIdInErrorThatAnotherEventHasIsAmbiguous)
{
    EXPECT_FALSE(AreUnambiguous({Leaf("A", TRUE), Leaf("A", TRUE)}));
    EXPECT_FALSE(AreUnambiguous({Leaf("A", TRUE), Leaf("A")}));
    EXPECT_FALSE(AreUnambiguous({Leaf(""), Leaf("", TRUE)}));
}

TEST(ErrorIdsTest, HealthyEventsMayShareAnId)
{
    EXPECT_TRUE(AreUnambiguous({Leaf("A"), Leaf("A"), Leaf("B", TRUE)}));
    EXPECT_TRUE(AreUnambiguous({Leaf("", TRUE)}));
}

TEST(ErrorIdsTest, ACrowdIsToldApartAsAFewAre)
{
    EventList events = Crowd();
    EXPECT_TRUE(AreUnambiguous(events));
    events.push_back(Leaf("E3"));
    EXPECT_TRUE(AreUnambiguous(events));
    events.push_back(Leaf("E4"));
    EXPECT_FALSE(AreUnambiguous(events));
    events.back() = Leaf("E4", TRUE);
    EXPECT_FALSE(AreUnambiguous(events));
    events.back() = Leaf("E/201");
    EXPECT_FALSE(AreUnambiguous(events));
}

TEST(ErrorIdsTest, IdsWithOneSketchAreToldApart)
{
    const EventList few{Leaf(IDS_WITH_ONE_SKETCH[0], TRUE), Leaf(IDS_WITH_ONE_SKETCH[1])};
    EXPECT_TRUE(AreUnambiguous(few));
    EventList many = Crowd();
    many.insert(many.end(), few.begin(), few.end());
    EXPECT_TRUE(AreUnambiguous(many));
}

TEST(ErrorIdsTest, OneGateLeavesNothingForTheNext)
{
    ErrorIds ids;
    const EventList events = Crowd();
    ErrorIds::Indexes inError;
    for (std::size_t event = 0; event < events.size(); event += 4) {
        inError.push_back(event);
    }
    EXPECT_TRUE(ids.AreUnambiguous(events, inError));
    EXPECT_TRUE(ids.AreUnambiguous(events, inError));
}

} // namespace
