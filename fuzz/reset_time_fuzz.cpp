// Any bytes as a recovery log, a reset log and a line of either.

#include "arborist/stores/repairs/reset_time_parser.h"
#include "fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const FuzzDir dir;
    const std::string log = dir.Write("recovery_log", data, size);
    ResetTimeParser parser(dir.Path("unpacked/"));
    parser.ParseRecoveryLog(log);
    parser.ParseRecoveryLog(log);
    parser.GetResetLogTime(log);
    const std::string line(reinterpret_cast<const char*>(data), size);
    ResetTimeParser::GetTime(line);
    ResetTimeParser::GetResetLogTimeForStr(line);
    return 0;
}
