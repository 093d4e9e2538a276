#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <sstream>

#include "CaseRun.h"

namespace {

constexpr int kExitFailed = 1;
constexpr int kExitBadUse = 2;

const char* NameOf(CaseResult::Verdict verdict) {
    switch (verdict) {
    case CaseResult::Verdict::Passed:
        return "passed";
    case CaseResult::Verdict::Skipped:
        return "skipped";
    default:
        return "FAILED";
    }
}

std::string Quoted(const std::string& text) {
    std::string quoted = "\"";
    for (const char character : text) {
        char escape[8];
        if (static_cast<unsigned char>(character) < 0x20 || character == '"' || character == '\\') {
            std::snprintf(escape, sizeof escape, "\\u%04x",
                          static_cast<unsigned>(static_cast<unsigned char>(character)));
            quoted += escape;
        } else {
            quoted += character;
        }
    }
    return quoted + '"';
}

void PrintPlain(const Case& one, const CaseResult& result, const Options& options) {
    std::printf("%-24s %-7s %6.1f s\n", one.name, NameOf(result.verdict), result.seconds);
    std::istringstream notes(result.notes);
    for (std::string note; std::getline(notes, note);)
        std::printf("    %s\n", note.c_str());
    if (result.verdict == CaseResult::Verdict::Skipped)
        std::printf("    %s\n", result.finding.c_str());
    if (result.verdict != CaseResult::Verdict::Failed)
        return;
    std::printf("    %s\n    should be: %s\n    while: %s\n", result.finding.c_str(), one.sentence,
                result.lastStep.c_str());
    std::printf("%s    again: %s\n", result.frames.c_str(), Reproduction(one, options).c_str());
}

void PrintJson(const Case& one, const CaseResult& result, const Options& options) {
    std::cout << "{\"case\":" << Quoted(one.name) << ",\"result\":" << Quoted(NameOf(result.verdict))
              << ",\"seconds\":" << result.seconds << ",\"finding\":" << Quoted(result.finding)
              << ",\"step\":" << Quoted(result.lastStep) << ",\"frames\":" << Quoted(result.frames)
              << ",\"notes\":" << Quoted(result.notes) << ",\"again\":" << Quoted(Reproduction(one, options)) << "}"
              << std::endl;
}

int List() {
    for (const Case& one : AllCases())
        std::printf("%-24s %s\n", one.name, one.sentence);
    return 0;
}

int BadUse(const std::string& problem) {
    std::cerr << "kxpvalidate: " << problem << "\n" << HelpText();
    return kExitBadUse;
}

/// The whole path of the module, since a case may change the working folder. @return empty, or why there is none.
std::string FindModule(std::string& file) {
    std::error_code error;
    const std::filesystem::path whole = std::filesystem::canonical(file, error);
    if (error)
        return file + ": " + error.message();
    if (!std::filesystem::is_regular_file(whole, error))
        return file + " is no regular file";
    file = whole.string();
    return {};
}

/// Results that nobody can read are none.
int Written(int exitCode) {
    std::cout.flush();
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0 && std::cout.good())
        return exitCode;
    std::cerr << "kxpvalidate: the output cannot be written\n";
    return kExitBadUse;
}

bool IsAmong(const std::string& name, const std::vector<std::string>& names) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// @return a name that no case has; empty when all have one.
std::string FindUnknown(const std::vector<std::string>& names) {
    const auto& cases = AllCases();
    for (const std::string& name : names)
        if (std::none_of(cases.begin(), cases.end(), [&](const Case& one) { return name == one.name; }))
            return name;
    return {};
}

/// Cases that would wait for a slow Release all the time.
CaseResult PutOff() {
    CaseResult result;
    result.verdict = CaseResult::Verdict::Skipped;
    result.finding = "IKXPDevice::Release takes longer than it may even where a device has nothing to do, see above; "
                     "--only runs the case all the same";
    return result;
}

/// Each case is run, but where nearly all of them would only wait: a module with that fault is told so within seconds.
int Validate(const Options& options) {
    constexpr const char* kFirstOfRelease = "stated-answers";
    bool isSlow = false;
    int failed = 0;
    for (const Case& one : AllCases()) {
        if (!options.only.empty() && !IsAmong(one.name, options.only))
            continue;
        const CaseResult result = isSlow ? PutOff() : RunCase(one, options);
        isSlow = isSlow || (result.hasSlowRelease && options.only.empty() && std::string(one.name) == kFirstOfRelease);
        (options.json ? PrintJson : PrintPlain)(one, result, options);
        std::fflush(stdout);
        failed += result.verdict == CaseResult::Verdict::Failed ? 1 : 0;
    }
    return failed > 0 ? kExitFailed : 0;
}

} // namespace

int main(int count, char** words) {
    Options options;
    const std::string problem = ReadOptions(count, words, options);
    if (options.help) {
        std::cout << HelpText();
        return 0;
    }
    if (!problem.empty())
        return BadUse(problem);
    if (options.list)
        return Written(List());
    if (const std::string unknown = FindUnknown(options.only); !unknown.empty())
        return BadUse("there is no case \"" + unknown + "\"; --list shows them");
    const std::string missing = FindModule(options.moduleFile);
    if (!missing.empty()) {
        std::cerr << "kxpvalidate: " << missing << "\n";
        return kExitBadUse;
    }
    return Written(Validate(options));
}
