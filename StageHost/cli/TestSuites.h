#pragma once

#include <vector>

#include <QByteArray>
#include <QString>

namespace stagehost {

/// The steps of one test for a file of many.
struct TestSuite {
    QByteArray steps; ///< a JUnit XML text as JUnitText writes it
    QString told;     ///< what belongs to it beside the steps; empty when there is nothing
};

/// All of them as one JUnit XML text, each a "testsuite" of its own.   [any]
QByteArray JUnitOf(const std::vector<TestSuite>& suites);

} // namespace stagehost
