#include "arborist/stores/repairs/repair_table_reader.h"

#include "arborist/frame/log.h"
#include "arborist/frame/trouble_watch.h"

bool RepairTableReader::IsThere()
{
    if (mCount == nullptr) {
        mCount = std::make_unique<FT::sql::SqlCursor>(mDatabase.GetHandle(),
            std::string("select count(*) from sqlite_master where type = 'table' and name = '") + TABLE_NAME + "'");
    } else {
        mCount->Restart();
    }
    if (mCount->Step() && mCount->GetInteger(0) != 0) {
        return true;
    }
    mCount.reset();
    return false;
}

void RepairTableReader::Release()
{
    if (mCount != nullptr) {
        mCount->Reset();
    }
}

bool RepairTableReader::Holds(const std::string& repairId) const
{
    // Compares here and not in SQL, where the file's schema decides which texts are equal. Reads to the last row, so
    // that damage anywhere in the table is reported.
    FT::sql::SqlCursor rows(mDatabase.GetHandle(), std::string("select repair_id from ") + TABLE_NAME);
    bool isKnown = false;
    while (rows.Step()) {
        isKnown = isKnown || rows.GetText(0) == repairId;
    }
    if (!rows.IsOk()) {
        FT::Log::GetInstance().Output(FT::LEVEL_ERROR, "FUNc:%s: Execute sql failed: %s",
            "FT::sql::SqlOperator::Execute", rows.GetError().c_str());
        StatementTrouble::Tell(rows.GetError(), mDatabase.GetHandle().path);
    }
    return isKnown;
}
