#pragma once

#include <vector>

#include "Trial.h"

/// One promise of the contract that a module is held to.
struct Case {
    const char* name;     ///< in kebab-case
    const char* sentence; ///< what the module does when it passes
    void (*run)(Trial&);  ///< throws Finding or Skipped
};

/// All, in the order in which they run.
const std::vector<Case>& AllCases();

void AnswersForFaces(Trial& trial);
void AnswersAsStated(Trial& trial);
void TakesNulls(Trial& trial);
void TakesGarbage(Trial& trial);
void TakesHugeArguments(Trial& trial);
void TakesLatin1(Trial& trial);
void TakesWalks(Trial& trial);
void TakesWrongOrders(Trial& trial);
void EndsContextsOnce(Trial& trial);
void LetsGoOfParameters(Trial& trial);
void AnswersReachScripts(Trial& trial);
void AnswersOnOlderLink(Trial& trial);
void GivesTextsBack(Trial& trial);
void KeepsOffDroppedValues(Trial& trial);
void KeepsSetups(Trial& trial);
void RefusesBrokenSetups(Trial& trial);
void EndsAtAnyInstant(Trial& trial);
void BearsRunaways(Trial& trial);
void StopsAndStartsOften(Trial& trial);
void TakesManyDevices(Trial& trial);
void LoadsOften(Trial& trial);
void LetsGoOfDevices(Trial& trial);
void LetsGoOfPanels(Trial& trial);
void FreesWhatIsGivenBack(Trial& trial);
void LeavesNothingBehind(Trial& trial);
void KeepsHostObjects(Trial& trial);
void KeepsToThreads(Trial& trial);
void LeavesProcessAlone(Trial& trial);
void TakesCallsFromInside(Trial& trial);
void AsksNothingOnceReleased(Trial& trial);
