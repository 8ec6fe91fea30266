#include "files/CFileIO.h"

#include "files/Pieces.h"

CFileIO::~CFileIO() = default;

unsigned int CFileIO::BcdToDec(unsigned char byte) {
    return (byte >> 4U) * 10U + (byte & 0x0FU);
}

std::vector<std::string> CFileIO::SplitString(std::string_view text, char delimiter) {
    std::vector<std::string> pieces;
    forEachPiece(text, delimiter, [&](std::string_view piece) { pieces.emplace_back(piece); });
    return pieces;
}
