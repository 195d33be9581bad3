// paintframes WIDTH HEIGHT RATE COUNT
//
// Writes the pictures 1 to COUNT to standard output as raw RGB24 without row padding. Each shows
// its own number, large enough to read, its time, a hand that turns once a second, and the number
// as a machine-readable code.

#include "framecode.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QStringList>

#include <cstdio>

namespace {

const QColor backgroundTop(20, 22, 28);
const QColor backgroundBottom(44, 48, 58);
const QColor track(66, 72, 86);
const QColor accent(42, 130, 218);
const QColor text(236, 238, 242);
const QColor faintText(140, 148, 164);

struct Film {
    int width = 0; // pixels
    int height = 0;
    double rate = 0.0; // frames per second
    int count = 0; // pictures
};

QFont fontOf(double pixels)
{
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(qMax(6, qRound(pixels)));
    return font;
}

void drawDial(QPainter& painter, const Film& film, double seconds)
{
    const double radius = film.height * 0.36;
    const QPointF centre(film.width / 2.0, film.height * 0.47);
    const QRectF ring(centre - QPointF(radius, radius), centre + QPointF(radius, radius));
    painter.setPen(QPen(track, film.height * 0.02));
    painter.drawEllipse(ring);
    const double turn = seconds - static_cast<int>(seconds);
    painter.setPen(QPen(accent, film.height * 0.03, Qt::SolidLine, Qt::RoundCap));
    painter.drawArc(
        ring, 90 * 16, -qRound(turn * 360 * 16)); // sixteenths of a degree, clockwise from the top
}

void drawProgress(QPainter& painter, const Film& film, int number)
{
    const double margin = film.height * 0.08;
    const double y = film.height * 0.945;
    const double end = film.width - margin;
    const double x = margin + (end - margin) * (number - 1) / qMax(1, film.count - 1);
    painter.setPen(QPen(track, film.height * 0.012, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(margin, y), QPointF(end, y));
    painter.setPen(Qt::NoPen);
    painter.setBrush(accent);
    painter.drawEllipse(QPointF(x, y), film.height * 0.025, film.height * 0.025);
    painter.setBrush(Qt::NoBrush);
}

void drawTexts(QPainter& painter, const Film& film, int number, double seconds)
{
    painter.setPen(text);
    painter.setFont(fontOf(film.height * 0.27));
    const QRectF dial(0, 0, film.width, film.height * 0.94);
    painter.drawText(dial, Qt::AlignCenter, QString::number(number));
    painter.setPen(faintText);
    painter.setFont(fontOf(film.height * 0.06));
    const QRectF corner(0, 0, film.width - film.height * 0.08, film.height * 0.9);
    painter.drawText(
        corner, Qt::AlignRight | Qt::AlignBottom, QStringLiteral("%1 s").arg(seconds, 0, 'f', 3));
}

void paintFrame(QImage& image, const Film& film, int number)
{
    const double seconds = (number - 1) / film.rate;
    QLinearGradient background(0, 0, 0, film.height);
    background.setColorAt(0, backgroundTop);
    background.setColorAt(1, backgroundBottom);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(image.rect(), background);
    drawDial(painter, film, seconds);
    drawProgress(painter, film, number);
    drawTexts(painter, film, number, seconds);
}

bool writeFrame(const QImage& image)
{
    const size_t rowBytes = static_cast<size_t>(image.width()) * 3;
    for (int y = 0; y < image.height(); ++y) {
        if (std::fwrite(image.constScanLine(y), 1, rowBytes, stdout) != rowBytes) {
            return false;
        }
    }
    return true;
}

/// "25" or "24000/1001"; 0 where it is neither.
double rateOf(const QString& word)
{
    const QStringList parts = word.split('/');
    const double divisor = parts.size() == 2 ? parts[1].toDouble() : 1.0;
    return parts.size() <= 2 && divisor > 0 ? parts[0].toDouble() / divisor : 0.0;
}

} // namespace

int main(int argc, char* argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QStringList words = QGuiApplication::arguments();
    Film film;
    if (words.size() == 5) {
        film = { words[1].toInt(), words[2].toInt(), rateOf(words[3]), words[4].toInt() };
    }
    if (film.width < framecode::width || film.height < framecode::height || film.rate <= 0
        || film.count < 1 || film.count > framecode::maxNumber) {
        std::fputs("usage: paintframes WIDTH HEIGHT RATE COUNT > raw rgb24\n", stderr);
        return 2;
    }
    QImage image(film.width, film.height, QImage::Format_RGB888);
    for (int number = 1; number <= film.count; ++number) {
        paintFrame(image, film, number);
        framecode::paint(image, number);
        if (!writeFrame(image)) {
            std::perror("paintframes");
            return 1;
        }
    }
    return std::fflush(stdout) == 0 ? 0 : 1;
}
