#include "Cases.h"

const std::vector<Case>& AllCases() {
    static const std::vector<Case> cases = {
        {"faces", "every object answers QueryInterface by the contract, and alike for each of its faces",
         &AnswersForFaces},
        {"null-arguments", "null arguments get the answers of the contract, in every operation", &TakesNulls},
        {"garbage-arguments", "arguments without a meaning harm nothing, in any operation", &TakesGarbage},
        {"huge-arguments", "long texts and the ends of the numbers harm nothing, in any operation",
         &TakesHugeArguments},
        {"latin-1-arguments", "texts of every character of the host's encoding harm nothing, in any operation",
         &TakesLatin1},
        {"walks", "random sequences of calls get the answers that the contract gives", &TakesWalks},
        {"contexts-end-once", "each context that was begun is ended once, through Stop and Release as well",
         &EndsContextsOnce},
        {"parameters-after-end", "nothing of a command is touched once its context has ended", &LetsGoOfParameters},
        {"texts-given-back", "each text that a value gave out is given back", &GivesTextsBack},
        {"values-after-definition", "nothing touches a value that a new definition has deleted",
         &KeepsOffDroppedValues},
        {"setup-round-trips", "a setup that was given is taken again and given unchanged", &KeepsSetups},
        {"broken-setups", "a setup that is refused leaves the device as it was", &RefusesBrokenSetups},
        {"release-at-any-instant", "a busy device stops and goes at any instant", &EndsAtAnyInstant},
        {"stops-and-starts", "a device stops and starts any number of times", &StopsAndStartsOften},
        {"many-devices", "many devices live at once, and are counted", &TakesManyDevices},
        {"module-goes-first", "a module that is released before its devices lets go of them", &LetsGoOfDevices},
        {"nothing-left-behind", "threads, descriptors and memory are as before when everything is gone",
         &LeavesNothingBehind},
        {"process-left-alone", "locale, folder, signals, masks, rounding and environment stay as they were",
         &LeavesProcessAlone},
        {"calls-from-inside", "the host may call the module from inside each of its own operations",
         &TakesCallsFromInside},
    };
    return cases;
}
