#include "input/KeyCodes.h"

#include <algorithm>
#include <iterator>

namespace tarvo::input {

namespace {

struct CodePair
{
    int evdev;      ///< KEY_... of linux/input-event-codes.h
    int virtualKey; ///< VK_... of winuser.h
};

constexpr CodePair keyCodes[] = {
    {1, 0x1B}, // Escape
    {2, '1'},    {3, '2'},   {4, '3'},   {5, '4'},  {6, '5'},  {7, '6'},  {8, '7'},  {9, '8'},
    {10, '9'},   {11, '0'},  {12, 0xBD}, // -
    {13, 0xBB},                          // =
    {14, 0x08},                          // Backspace
    {15, 0x09},                          // Tab
    {16, 'Q'},   {17, 'W'},  {18, 'E'},  {19, 'R'}, {20, 'T'}, {21, 'Y'}, {22, 'U'}, {23, 'I'},
    {24, 'O'},   {25, 'P'},  {26, 0xDB}, // [
    {27, 0xDD},                          // ]
    {28, 0x0D},                          // Enter
    {29, 0xA2},                          // left Ctrl
    {30, 'A'},   {31, 'S'},  {32, 'D'},  {33, 'F'}, {34, 'G'}, {35, 'H'}, {36, 'J'}, {37, 'K'},
    {38, 'L'},   {39, 0xBA},                                                                     // ;
    {40, 0xDE},                                                                                  // '
    {41, 0xC0},                                                                                  // `
    {42, 0xA0},                                                                                  // left Shift
    {43, 0xDC},                                                                                  // backslash
    {44, 'Z'},   {45, 'X'},  {46, 'C'},  {47, 'V'}, {48, 'B'}, {49, 'N'}, {50, 'M'}, {51, 0xBC}, // ,
    {52, 0xBE},                                                                                  // .
    {53, 0xBF},                                                                                  // /
    {54, 0xA1},                                                                                  // right Shift
    {55, 0x6A},                                                                                  // pad *
    {56, 0xA4},                                                                                  // left Alt
    {57, 0x20},                                                                                  // Space
    {58, 0x14},                                                                                  // Caps Lock
    {59, 0x70},                                                                                  // F1
    {60, 0x71},                                                                                  // F2
    {61, 0x72},                                                                                  // F3
    {62, 0x73},                                                                                  // F4
    {63, 0x74},                                                                                  // F5
    {64, 0x75},                                                                                  // F6
    {65, 0x76},                                                                                  // F7
    {66, 0x77},                                                                                  // F8
    {67, 0x78},                                                                                  // F9
    {68, 0x79},                                                                                  // F10
    {69, 0x90},                                                                                  // Num Lock
    {70, 0x91},                                                                                  // Scroll Lock
    {71, 0x67},                                                                                  // pad 7
    {72, 0x68},                                                                                  // pad 8
    {73, 0x69},                                                                                  // pad 9
    {74, 0x6D},                                                                                  // pad -
    {75, 0x64},                                                                                  // pad 4
    {76, 0x65},                                                                                  // pad 5
    {77, 0x66},                                                                                  // pad 6
    {78, 0x6B},                                                                                  // pad +
    {79, 0x61},                                                                                  // pad 1
    {80, 0x62},                                                                                  // pad 2
    {81, 0x63},                                                                                  // pad 3
    {82, 0x60},                                                                                  // pad 0
    {83, 0x6E},                                                                                  // pad .
    {86, 0xE2},  // the key beside left Shift
    {87, 0x7A},  // F11
    {88, 0x7B},  // F12
    {89, 0xC1},  // Ro
    {92, 0x1C},  // Henkan
    {93, 0x15},  // Kana
    {94, 0x1D},  // Muhenkan
    {96, 0x0D},  // pad Enter
    {97, 0xA3},  // right Ctrl
    {98, 0x6F},  // pad /
    {99, 0x2C},  // Print
    {100, 0xA5}, // right Alt
    {102, 0x24}, // Home
    {103, 0x26}, // Up
    {104, 0x21}, // Page Up
    {105, 0x25}, // Left
    {106, 0x27}, // Right
    {107, 0x23}, // End
    {108, 0x28}, // Down
    {109, 0x22}, // Page Down
    {110, 0x2D}, // Insert
    {111, 0x2E}, // Delete
    {113, 0xAD}, // Mute
    {114, 0xAE}, // Volume -
    {115, 0xAF}, // Volume +
    {119, 0x13}, // Pause
    {121, 0xC2}, // pad ,
    {122, 0x15}, // Hangul, where Kana is elsewhere
    {123, 0x19}, // Hanja
    {125, 0x5B}, // left Windows
    {126, 0x5C}, // right Windows
    {127, 0x5D}, // Menu
    {128, 0xA9}, // Stop of a browser
    {138, 0x2F}, // Help
    {140, 0xB7}, // Calculator
    {142, 0x5F}, // Sleep
    {155, 0xB4}, // Mail
    {156, 0xAB}, // Favourites
    {158, 0xA6}, // Back
    {159, 0xA7}, // Forward
    {163, 0xB0}, // Next title
    {164, 0xB3}, // Play
    {165, 0xB1}, // Previous title
    {166, 0xB2}, // Stop of a player
    {172, 0xAC}, // Home page
    {173, 0xA8}, // Refresh
    {183, 0x7C}, // F13
    {184, 0x7D}, // F14
    {185, 0x7E}, // F15
    {186, 0x7F}, // F16
    {187, 0x80}, // F17
    {188, 0x81}, // F18
    {189, 0x82}, // F19
    {190, 0x83}, // F20
    {191, 0x84}, // F21
    {192, 0x85}, // F22
    {193, 0x86}, // F23
    {194, 0x87}, // F24
    {217, 0xAA}, // Search
};

std::optional<int> find(int CodePair::*from, int CodePair::*to, int value)
{
    const auto found = std::find_if(std::begin(keyCodes), std::end(keyCodes),
                                    [from, value](const CodePair &code) { return code.*from == value; });
    return found == std::end(keyCodes) ? std::nullopt : std::optional((*found).*to);
}

} // namespace

std::optional<int> virtualKeyOf(int evdevCode)
{
    return find(&CodePair::evdev, &CodePair::virtualKey, evdevCode);
}

std::optional<int> evdevCodeOf(int virtualKey)
{
    return find(&CodePair::virtualKey, &CodePair::evdev, virtualKey);
}

} // namespace tarvo::input
