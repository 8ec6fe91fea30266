#ifndef FILES_PIECES_H
#define FILES_PIECES_H

#include <cstddef>
#include <string_view>

/** Calls @p action with each non-empty piece of @p text between delimiters, in order. The pieces
   lie within the text. */
template <class Action>
void forEachPiece(std::string_view text, char delimiter, Action action) {
    while (!text.empty()) {
        const std::size_t length = text.find(delimiter);
        const std::string_view piece = text.substr(0, length);
        if (!piece.empty())
            action(piece);
        if (length == std::string_view::npos)
            break;
        text.remove_prefix(length + 1);
    }
}

#endif
