#ifndef FILES_CHEXTOBIN_H
#define FILES_CHEXTOBIN_H

/**
 * Conversion of hexadecimal text. Digits are '0' to '9', 'A' to 'F' and 'a' to 'f'; signs, blanks
 * and a "0x" are not accepted.
 */
class CHexToBin {
public:
    CHexToBin() = default;
    virtual ~CHexToBin();

    /** The value 0 to 255 of the two digits at @p p, or -1 if either is not a digit. The second
        character is not read when the first is not a digit. */
    static int hexPairToByte(const char* p);

    /** Converts @p byteCount pairs of digits into the first @p byteCount bytes of @p out. Exactly
        twice @p byteCount characters are read; no terminator is needed.
        @return 1 on success, also for a count below 1, which writes nothing; 0 at the first
                invalid pair: the bytes before it stay written. */
    int hexToBin(const char* hexText, unsigned char* out, int byteCount);

    /** Writes @p data as text into "HexParseResult.txt" in the working directory. A record is 259
        bytes: a 3-byte address, most significant byte first, and 256 data bytes; an incomplete
        record at the end is left out.
        @return 0 on success; EOF when the file cannot be opened, written or closed. */
    int writeParseResult(const unsigned char* data, unsigned int size);
};

#endif
