// Copies as much as it is told to: the compiler can't know whether it fits.
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>

int main(int argc, char **argv)
{
    std::array<char, 16> room{};
    std::memcpy(room.data(), argv[0], static_cast<size_t>(std::atoi(argc > 1 ? argv[1] : "1")));
    std::printf("%s\n", room.data());
    return 0;
}
