#include "Protocol.h"

#include <gtest/gtest.h>

#include <QTest>

#include "Projector.h"
#include "Waits.h"

namespace {

using projector::Answer;
using projector::Power;
using projector::Projector;

projector::Description Known() {
    projector::Description description;
    description.name = QString::fromUtf8("B\xC3\xBChne");
    description.lampHours = {1234, 5};
    description.errors = QStringLiteral("010200");
    description.warmUp = description.coolDown = kNever;
    return description;
}

projector::Description KnownAndQuick() {
    projector::Description description = Known();
    description.warmUp = 0;
    return description;
}

struct Exchange {
    const char* says;
    const char* command;
    const char* answer; ///< without its CR; empty: none
};

void Converse(Projector& projector, std::initializer_list<Exchange> exchanges) {
    for (const Exchange& one : exchanges) {
        const QByteArray expected = *one.answer == 0 ? QByteArray() : QByteArray(one.answer) + '\r';
        EXPECT_EQ(Answer(projector, one.command).toStdString(), expected.toStdString()) << one.says;
    }
}

void TurnOn(Projector& projector) {
    projector.TurnOn();
    ASSERT_TRUE(QTest::qWaitFor([&] { return projector.GetPower() == Power::On; }, kLongest));
}

} // namespace

TEST(Protocol, TellsWhatTheProjectorIsInAnyState) {
    Projector projector(Known());
    Converse(projector, {
                            {"power", "%1POWR ?", "%1POWR=0"},
                            {"errors", "%1ERST ?", "%1ERST=010200"},
                            {"lamps, off", "%1LAMP ?", "%1LAMP=1234 0 5 0"},
                            {"inputs", "%1INST ?", "%1INST=11 21 31 32"},
                            {"a name in UTF-8", "%1NAME ?", "%1NAME=B\xC3\xBChne"},
                            {"maker", "%1INF1 ?", "%1INF1=House technics"},
                            {"product", "%1INF2 ?", "%1INF2=Loopback"},
                            {"other", "%1INFO ?", "%1INFO=1"},
                            {"class", "%1CLSS ?", "%1CLSS=1"},
                            {"small letters", "%1powr ?", "%1POWR=0"},
                        });
}

TEST(Protocol, RefusesInputAndMuteWhileTheLampIsNotOn) {
    Projector projector(Known());
    Converse(projector, {
                            {"input asked while off", "%1INPT ?", "%1INPT=ERR3"},
                            {"input set while off", "%1INPT 31", "%1INPT=ERR3"},
                            {"a wrong input counts more", "%1INPT 99", "%1INPT=ERR2"},
                            {"mute asked while off", "%1AVMT ?", "%1AVMT=ERR3"},
                            {"mute set while off", "%1AVMT 31", "%1AVMT=ERR3"},
                            {"off when it is off", "%1POWR 0", "%1POWR=OK"},
                            {"on", "%1POWR 1", "%1POWR=OK"},
                            {"warming up", "%1POWR ?", "%1POWR=3"},
                            {"lit while it warms up", "%1LAMP ?", "%1LAMP=1234 1 5 1"},
                            {"off while it warms up", "%1POWR 0", "%1POWR=ERR3"},
                            {"input while it warms up", "%1INPT 31", "%1INPT=ERR3"},
                        });
}

TEST(Protocol, WorksInputAndMuteWhileTheLampIsOn) {
    Projector projector(KnownAndQuick());
    TurnOn(projector);
    Converse(projector, {
                            {"on", "%1POWR ?", "%1POWR=1"},
                            {"the first input", "%1INPT ?", "%1INPT=11"},
                            {"another input", "%1INPT 31", "%1INPT=OK"},
                            {"is told", "%1INPT ?", "%1INPT=31"},
                            {"an input that it lacks", "%1INPT 33", "%1INPT=ERR2"},
                            {"nothing muted", "%1AVMT ?", "%1AVMT=30"},
                            {"picture", "%1AVMT 11", "%1AVMT=OK"},
                            {"picture is told", "%1AVMT ?", "%1AVMT=11"},
                            {"and sound", "%1AVMT 21", "%1AVMT=OK"},
                            {"both are told", "%1AVMT ?", "%1AVMT=31"},
                            {"picture back", "%1AVMT 10", "%1AVMT=OK"},
                            {"sound is told", "%1AVMT ?", "%1AVMT=21"},
                            {"sound back", "%1AVMT 20", "%1AVMT=OK"},
                            {"all", "%1AVMT 31", "%1AVMT=OK"},
                            {"all back", "%1AVMT 30", "%1AVMT=OK"},
                            {"nothing is told", "%1AVMT ?", "%1AVMT=30"},
                            {"off", "%1POWR 0", "%1POWR=OK"},
                            {"cooling", "%1POWR ?", "%1POWR=2"},
                            {"dark while it cools", "%1LAMP ?", "%1LAMP=1234 0 5 0"},
                            {"on while it cools", "%1POWR 1", "%1POWR=ERR3"},
                        });
}

TEST(Protocol, AnswersWrongCommandsAndParameters) {
    Projector projector(KnownAndQuick());
    TurnOn(projector);
    Converse(projector, {
                            {"a command that is none", "%1FLYY 1", "%1FLYY=ERR1"},
                            {"a power that is none", "%1POWR 2", "%1POWR=ERR2"},
                            {"no parameter", "%1POWR ", "%1POWR=ERR2"},
                            {"a mute that is none", "%1AVMT 41", "%1AVMT=ERR2"},
                            {"a mute of nothing", "%1AVMT 01", "%1AVMT=ERR2"},
                            {"a mute too long", "%1AVMT 311", "%1AVMT=ERR2"},
                            {"a mute that is half", "%1AVMT 32", "%1AVMT=ERR2"},
                            {"telling takes no value", "%1NAME x", "%1NAME=ERR2"},
                            {"another class", "%2POWR ?", ""},
                            {"no header", "POWR ?", ""},
                            {"no blank", "%1POWR", ""},
                            {"nothing", "", ""},
                        });
    EXPECT_EQ(Answer(projector, "%1POWR " + QByteArray(129, '1')), QByteArray());
}

TEST(Protocol, SaysThatAProjectorWithoutLampsKnowsNone) {
    projector::Description description;
    description.lampHours.clear();
    Projector projector(description);
    Converse(projector, {{"no lamp", "%1LAMP ?", "%1LAMP=ERR1"}});
}

TEST(Protocol, AnswersWithAFailureWhileTheProjectorIsBroken) {
    projector::Description description;
    description.broken = true;
    Projector projector(description);
    Converse(projector, {
                            {"power asked", "%1POWR ?", "%1POWR=ERR4"},
                            {"power set", "%1POWR 1", "%1POWR=ERR4"},
                            {"input", "%1INPT ?", "%1INPT=ERR4"},
                            {"mute", "%1AVMT 31", "%1AVMT=ERR4"},
                            {"the name is known", "%1NAME ?", "%1NAME=Projector"},
                        });
}

TEST(Protocol, MakesTheDigestOfThePublishedExample) {
    EXPECT_EQ(projector::Digest("498e4a67", "JBMIAProjectorLink"), "5d8409bc1c3fa39749434aa3a5c38682");
}
