#include "arborist/model/condition.h"

#include <algorithm>

void OrLogic::InsertLogicItemList(const LogicItemList& items)
{
    logicItemList.insert(logicItemList.end(), items.begin(), items.end());
}

bool OrLogic::CheckAndListResult() const
{
    return std::all_of(logicItemList.begin(), logicItemList.end(),
        [](const auto& item) { return item == nullptr || item->IsResult(); });
}
