// readframes WIDTH HEIGHT COUNT
//
// Reads raw RGB24 pictures from standard input; succeeds when they carry the numbers 1 to COUNT in
// this order.

#include "framecode.h"

#include <cstdio>
#include <cstdlib>
#include <vector>

int main(int argc, char* argv[])
{
    const int width = argc == 4 ? std::atoi(argv[1]) : 0;
    const int height = argc == 4 ? std::atoi(argv[2]) : 0;
    const int count = argc == 4 ? std::atoi(argv[3]) : 0;
    if (width < framecode::width || height < framecode::height || count < 1) {
        std::fputs("usage: readframes WIDTH HEIGHT COUNT < raw rgb24\n", stderr);
        return 2;
    }
    std::vector<uint8_t> picture(static_cast<size_t>(width) * static_cast<size_t>(height) * 3);
    int pictures = 0;
    int wrong = 0;
    while (std::fread(picture.data(), 1, picture.size(), stdin) == picture.size()) {
        ++pictures;
        const int number = framecode::read(picture.data(), width, height, width * 3);
        if (number != pictures && ++wrong <= 5) {
            std::fprintf(stderr, "readframes: picture %d carries %d\n", pictures, number);
        }
    }
    if (pictures != count) {
        std::fprintf(stderr, "readframes: %d pictures instead of %d\n", pictures, count);
    }
    return wrong == 0 && pictures == count ? 0 : 1;
}
