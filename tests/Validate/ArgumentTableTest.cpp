#include "ArgumentTable.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "PromisedThreads.h"

namespace {

using Operations = std::set<std::string>; ///< "IKXPDevice::Start"

/// What a host implements, and the table leaves out.
const std::set<std::string> kFacesOfTheHost = {"IData",

                                               "IIntegerData",
                                               "IStringData",
                                               "IRealData",
                                               "ITimeData",
                                               "IDateData",
                                               "IEnumData",
                                               "IObjectParam",
                                               "IObjectParams",
                                               "IDeviceVariables",
                                               "IManagerRuntimeInfo",
                                               "IVariableManager",
                                               "IFolderManager",
                                               "IObjectNameTools",
                                               "IThemeManager",
                                               "IManagerRemote",
                                               "IManagerRemote2",
                                               "IManagerRemoteManager",
                                               "IManagerRemoteManager2",
                                               "IObjectFactoryManager",
                                               "IDialogManager2",
                                               "IDateDialog",
                                               "IPanelRect",
                                               "IResource",
                                               "IPortResource",
                                               "IResourceProxy",
                                               "IResourceProvider",
                                               "ISerialResource",
                                               "IDMXResource",
                                               "IIOResource",
                                               "IIOResourceChannel"};

/// The virtual operations of each class of a header.
void ReadHeader(const std::filesystem::path& path, std::map<std::string, Operations>& faces) {
    static const std::regex classBegin("^class (\\w+)( final)?( : .*)? \\{$");
    static const std::regex operation("^\\s+virtual .*?(\\w+)\\(");
    std::ifstream header(path);
    std::string face;
    std::smatch match;
    for (std::string line; std::getline(header, line);)
        if (std::regex_search(line, match, classBegin))
            faces[face = match[1]];
        else if (std::regex_search(line, match, operation))
            faces[face].insert(face + "::" + match[1].str());
}

std::map<std::string, Operations> FacesOfTheContract() {
    std::map<std::string, Operations> faces;
    for (const auto& entry : std::filesystem::directory_iterator(CONTRACT_FOLDER))
        if (entry.path().extension() == ".h")
            ReadHeader(entry.path(), faces);
    return faces;
}

Operations Without(const Operations& all, const Operations& known) {
    Operations rest;
    std::set_difference(all.begin(), all.end(), known.begin(), known.end(), std::inserter(rest, rest.end()));
    return rest;
}

Operations OfTheModule() {
    Operations all;
    for (const auto& [face, operations] : FacesOfTheContract())
        if (kFacesOfTheHost.count(face) == 0)
            all.insert(operations.begin(), operations.end());
    return all;
}

Operations OfTheTable() {
    Operations all;
    for (const Operation& operation : AllOperations())
        all.insert(std::string(operation.face) + "::" + operation.name);
    return all;
}

TEST(ArgumentTable, HasEachOperationOfTheHeadersThatAModuleImplements) {
    EXPECT_EQ(Without(OfTheModule(), OfTheTable()), Operations());
}

TEST(ArgumentTable, HasNoOperationThatTheHeadersLack) {
    EXPECT_EQ(Without(OfTheTable(), OfTheModule()), Operations());
}

TEST(ArgumentTable, HasEachOperationOnce) {
    EXPECT_EQ(OfTheTable().size(), AllOperations().size());
}

TEST(ArgumentTable, KnowsNoFaceOfTheHostThatTheHeadersLack) {
    const auto faces = FacesOfTheContract();
    for (const std::string& face : kFacesOfTheHost)
        EXPECT_EQ(faces.count(face), 1U) << face;
}

/// The words in brackets with which the headers end the description of each operation.
std::map<std::string, std::string> ThreadsOfTheContract() {
    static const std::regex classBegin("^class (\\w+)( final)?( : .*)? \\{$");
    static const std::regex operation("^\\s+virtual .*?(\\w+)\\(");
    static const std::regex words("\\[([a-z, ]+)\\]$");
    std::map<std::string, std::string> threads;
    for (const auto& entry : std::filesystem::directory_iterator(CONTRACT_FOLDER)) {
        std::ifstream header(entry.path());
        std::string face;
        std::string last;
        std::smatch match;
        for (std::string line; std::getline(header, line);)
            if (std::regex_search(line, match, classBegin))
                face = match[1];
            else if (std::regex_search(line, match, words))
                last = match[1];
            else if (std::regex_search(line, match, operation))
                threads[face + "::" + match[1].str()] = last;
    }
    return threads;
}

TEST(PromisedThreads, AreThoseOfTheHeaders) {
    auto threads = ThreadsOfTheContract();
    for (const PromisedThread& one : AllPromisedThreads())
        EXPECT_EQ(threads[std::string(one.face) + "::" + one.name], one.word) << one.face << "::" << one.name;
}

TEST(HeaderReader, SeesWhatAHeaderAdds) {
    const auto path = std::filesystem::path(testing::TempDir()) / "ArgumentTableTest.h";
    std::ofstream(path) << "class IOne : public IMInterface {\npublic:\n    virtual const char* Say(int a,\n"
                           "                            int b) = 0;\n    virtual KXPCode Hear() = 0; ///< f(x)\n};\n";
    std::map<std::string, Operations> faces;
    ReadHeader(path, faces);
    std::filesystem::remove(path);
    EXPECT_EQ(faces["IOne"], (Operations{"IOne::Say", "IOne::Hear"}));
}

} // namespace
