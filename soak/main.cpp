#include "soak.h"

#include <QGuiApplication>

#include <cstdio>

int main(int argc, char* argv[])
{
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    bool isTime = false;
    bool isSeed = false;
    const int seconds = arguments.value(1).toInt(&isTime);
    const quint32 seed = arguments.value(2).toUInt(&isSeed);
    if (!isTime || !isSeed || arguments.size() != 3) {
        std::fputs("usage: soak SECONDS SEED\n", stderr);
        return 2;
    }
    const QString fault = Soak(seed, seconds).run();
    std::puts(
        qPrintable(fault.isEmpty() ? QStringLiteral("It holds")
                                   : QString("FAILED with seed %1: %2").arg(seed).arg(fault)));
    return fault.isEmpty() ? 0 : 1;
}
