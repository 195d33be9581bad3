#pragma once

#include <QObject>
#include <QSocketNotifier>

/// Tells the event loop of the system's requests to end the program (SIGTERM, SIGINT), so that it
/// ends in order. Only the first such request is caught: a second one, for a program that does not
/// come round to ending, has the system's usual effect. One object for each process.
class TerminationSignals : public QObject {
    Q_OBJECT

public:
    TerminationSignals();
    ~TerminationSignals() override;

Q_SIGNALS:
    void requested();

private:
    QSocketNotifier m_notifier; // at the reading end of the pipe into which the handler writes
};
