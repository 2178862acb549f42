#include "arborist/evaluation/rule_engine.h"

void RuleEngine::Init()
{
    InitCommonPart();
}

void RuleEngine::InitCommonPart()
{
    // No family that reads the common part is built yet.
}
