#include <kelCore/recording/internal/kelChecksum.h>

#include <array>

namespace {

using Table = std::array<std::array<std::uint32_t, 256>, 8>;

/// Entry [k][b]: what byte b does to the checksum when k bytes come behind it.
constexpr Table makeTable()
{
    Table table{};
    for (std::uint32_t byte = 0; byte < 256; ++byte) {
        std::uint32_t value = byte;
        for (int bit = 0; bit < 8; ++bit)
            value = value & 1 ? value >> 1 ^ 0xEDB88320u : value >> 1;
        table[0][byte] = value;
    }
    for (std::size_t k = 1; k < table.size(); ++k)
        for (std::size_t byte = 0; byte < 256; ++byte)
            table[k][byte] = table[k - 1][byte] >> 8 ^ table[0][table[k - 1][byte] & 0xff];
    return table;
}

constexpr Table table = makeTable();

} // namespace

std::uint32_t kelDataFlow::checksum(const char *bytes, std::size_t size, std::uint32_t start)
{
    const auto *at = reinterpret_cast<const unsigned char *>(bytes);
    std::uint32_t value = ~start;
    for (; size >= 8; size -= 8, at += 8) // eight at a time: M. Kounavis, F. Berry, "slicing by 8", 2008
        value = table[7][(value ^ at[0]) & 0xff] ^ table[6][(value >> 8 ^ at[1]) & 0xff]
            ^ table[5][(value >> 16 ^ at[2]) & 0xff] ^ table[4][value >> 24 ^ at[3]] ^ table[3][at[4]]
            ^ table[2][at[5]] ^ table[1][at[6]] ^ table[0][at[7]];
    for (; size > 0; --size, ++at)
        value = value >> 8 ^ table[0][(value ^ *at) & 0xff];
    return ~value;
}
