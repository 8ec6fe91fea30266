#include "files/CFileIO.h"

CFileIO::~CFileIO() = default;

unsigned int CFileIO::BcdToDec(unsigned char byte) {
    return (byte >> 4U) * 10U + (byte & 0x0FU);
}

std::vector<std::string> CFileIO::SplitString(std::string_view text, char delimiter) {
    std::vector<std::string> pieces;
    while (!text.empty()) {
        const std::size_t length = text.find(delimiter);
        const std::string_view piece = text.substr(0, length);
        if (!piece.empty())
            pieces.emplace_back(piece);
        if (length == std::string_view::npos)
            break;
        text.remove_prefix(length + 1);
    }
    return pieces;
}
