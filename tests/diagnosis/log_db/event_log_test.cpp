#include "diagnosis/log_db/event_log.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "tests/support/database_rows.h"
#include "tests/support/full_disk.h"
#include "tests/support/temp_dir.h"

namespace {

using diagnosis::EventLogWriter;
using diagnosis::LoggedEvent;

// Writes "new.db" with many versions; the failure, or nothing.
std::optional<diagnosis::Failure> Write(EventLogWriter::Durability durability)
{
    EventLogWriter writer(durability);
    auto failure = writer.Open("new.db");
    for (int number = 0; number < 300 && !failure; ++number) {
        failure = writer.Add({number, 7, std::string(200, 'v') + std::to_string(number), std::string(200, 'x')});
    }
    return failure ? failure : writer.Finish();
}

TEST(EventLogWriterTest, ALogThatDoesNotFitOnTheDiskIsToldAndNotThere)
{
    const TempDir dir;
    for (const auto durability : {EventLogWriter::Durability::FULL, EventLogWriter::Durability::NONE}) {
        ASSERT_FALSE(Write(durability).has_value());
        EXPECT_EQ(DatabaseRows("new.db", "SELECT count(*) FROM event_version").at(0), "300");
        const auto size = std::filesystem::file_size("new.db");
        std::filesystem::remove("new.db");
        for (std::uintmax_t bytes = 0; bytes < size; bytes += 4096) {
            const FullDisk disk(bytes);
            const auto failure = Write(durability);
            ASSERT_TRUE(failure.has_value()) << bytes;
            EXPECT_EQ(failure->code, diagnosis::FailureCode::LOG_NOT_WRITTEN);
            EXPECT_TRUE(std::filesystem::is_empty(".")) << bytes;
        }
    }
}

} // namespace
