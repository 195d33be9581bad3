#pragma once

#include <QString>
#include <QThread>

#include <atomic>

/// Copies a file on a thread of its own, beside the destination first, so that what stood there is
/// replaced by the whole copy or not at all. The copy is stopped and waited for when this goes.
class MediaCopy : public QThread {
    Q_OBJECT

public:
    enum class Result { Done, Cancelled, OverwriteFailed, CopyFailed };

    MediaCopy(const QString& source, const QString& destination, QObject* parent = nullptr);
    ~MediaCopy() override;

    [[nodiscard]] QString destination() const { return m_destination; }

    /// Once finished.
    [[nodiscard]] Result result() const { return m_result; }

    /// Any thread.
    void cancel() { m_cancelled = true; }

Q_SIGNALS:
    /// From 0 to 100.
    void progressed(int percent);

protected:
    void run() override;

private:
    [[nodiscard]] Result copy();

    const QString m_source;
    const QString m_destination;
    std::atomic<bool> m_cancelled = false; // written by the GUI thread
    Result m_result = Result::Cancelled; // written by this thread, read after its end
};
