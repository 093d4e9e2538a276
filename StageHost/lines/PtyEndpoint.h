#pragma once

#include <memory>

#include <QSocketNotifier>
#include <QTimer>

#include "Endpoint.h"
#include "PassingFolder.h"

namespace stagehost {

/// A serial port for one program. Its name is a link, which leads to another pseudo-terminal after a return, as that of
/// an adapter does that was pulled out and put back.   [host main]
class PtyEndpoint final : public Endpoint {
public:
    explicit PtyEndpoint(EndpointNews& news);
    ~PtyEndpoint() override;

    QString Open(const LinePlace& place) override;
    void LookForPrograms() override;

private:
    void LetIn(bool lets) override;
    void DoLeave() override;
    QString DoReturn() override;
    void LineIsOver(LineId line, bool isClosedHere) override;
    void LookAgain();
    QString ClearPlace() const;
    void Drop();

    std::unique_ptr<PassingFolder> m_folder; ///< of the link, when nobody has named one
    QString m_terminal;                      ///< the name that the link leads to
    int m_ours = -1;
    int m_watch = -1;
    std::unique_ptr<QSocketNotifier> m_opens;
    QTimer m_lookAgain; ///< runs while a descriptor of ours is missing: for a program that has come, or for the port
    LineId m_line = 0;  ///< the one that is open; 0: none
    bool m_letsIn = true;
};

} // namespace stagehost
