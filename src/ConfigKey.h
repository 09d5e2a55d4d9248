#pragma once

#include <array>
#include <variant>

namespace tarvo {

// The settings, each declared once with its type, default and storage, so that no caller can misspell one.

struct StringKey
{
    const char *key;
    const char *defaultValue = "";
    bool isVolatile = false;  ///< kept in memory, never in the file
    bool isEncrypted = false; ///< the file holds cipher text, callers see plain text
};
struct BoolKey
{
    const char *key;
    bool defaultValue;
};
struct IntKey
{
    const char *key;
    int defaultValue;
};
struct RealKey
{
    const char *key;
    double defaultValue;
};
/// A list of folders; the default is the empty list.
struct PathListKey
{
    const char *key;
};

namespace config {

inline constexpr StringKey authToken{.key = "Auth/Token", .isVolatile = true};
inline constexpr StringKey authRefreshToken{.key = "Auth/RefreshToken", .isEncrypted = true};
inline constexpr StringKey authUsername{.key = "Auth/Username"};
inline constexpr StringKey authPassword{.key = "Auth/Password", .isEncrypted = true};
inline constexpr BoolKey authRememberPassword{"Auth/RememberPassword", false};
inline constexpr BoolKey authAutoLogin{"Auth/AutoLogin", false};
inline constexpr BoolKey authVatsim{"Auth/Vatsim", true};
inline constexpr StringKey profileRealname{.key = "Profile/Realname"};
inline constexpr StringKey profileHomeAirport{.key = "Profile/HomeAirport", .defaultValue = "ZBAA"};
inline constexpr IntKey xplaneUdpPort{"XPlane/UDPPort", 49000};
inline constexpr StringKey xplaneNetworkAddress{.key = "XPlane/NetworkAddress", .defaultValue = "127.0.0.1"};
inline constexpr PathListKey xplaneCsl{"XPlane/CSL"};
inline constexpr StringKey msfsPackagesPath2020{.key = "MSFS/PackagesPath2020"};
inline constexpr StringKey msfsPackagesPath2024{.key = "MSFS/PackagesPath2024"};
inline constexpr StringKey msfsCommunityPath2020{.key = "MSFS/CommunityPath2020"};
inline constexpr StringKey msfsCommunityPath2024{.key = "MSFS/CommunityPath2024"};
inline constexpr PathListKey msfsCustomMappingPaths2020{"MSFS/CustomMappingPaths2020"};
inline constexpr PathListKey msfsCustomMappingPaths2024{"MSFS/CustomMappingPaths2024"};
inline constexpr IntKey msfsLibraryReloadToken{"MSFS/LibraryReloadToken", 0};
inline constexpr IntKey voiceDriver{"Voice/Driver", 13};
inline constexpr StringKey voiceInputDevice{.key = "Voice/InputDevice", .defaultValue = "Default"};
inline constexpr StringKey voiceOutputHeadphoneDevice{.key = "Voice/OutputHeadphoneDevice", .defaultValue = "Default"};
inline constexpr StringKey voiceOutputSpeakerDevice{.key = "Voice/OutputSpeakerDevice", .defaultValue = "Default"};
inline constexpr StringKey voicePttKey{.key = "Voice/PttKey", .defaultValue = "kb:163"};
inline constexpr RealKey voiceMicGain{"Voice/MicGain", 0.0};
inline constexpr RealKey voicePttPressFreq{"Voice/PttPressFreq", 1500.0};
inline constexpr RealKey voicePttReleaseFreq{"Voice/PttReleaseFreq", 1000.0};
inline constexpr RealKey voicePttVolume{"Voice/PttVolume", 1.0};
inline constexpr IntKey voicePttPlayDevice{"Voice/PttPlayDevice", 0};
inline constexpr RealKey voiceConflictVolume{"Voice/ConflictVolume", 1.0};
inline constexpr IntKey voiceConflictPlayDevice{"Voice/ConflictPlayDevice", 0};

// What the pilot typed serves this login session even when it is not to be remembered. Filled at every login, emptied
// when the session's clean-up has run; never in the file.
inline constexpr StringKey sessionUsername{.key = "Session/Username", .isVolatile = true};
inline constexpr StringKey sessionPassword{.key = "Session/Password", .isVolatile = true};

/// Every key that the file holds, in the order in which a fresh file is written.
using AnyKey = std::variant<StringKey, BoolKey, IntKey, RealKey, PathListKey>;
inline constexpr std::array<AnyKey, 30> storedKeys{
    authRefreshToken,
    authUsername,
    authPassword,
    authRememberPassword,
    authAutoLogin,
    authVatsim,
    profileRealname,
    profileHomeAirport,
    xplaneUdpPort,
    xplaneNetworkAddress,
    xplaneCsl,
    msfsPackagesPath2020,
    msfsPackagesPath2024,
    msfsCommunityPath2020,
    msfsCommunityPath2024,
    msfsCustomMappingPaths2020,
    msfsCustomMappingPaths2024,
    msfsLibraryReloadToken,
    voiceDriver,
    voiceInputDevice,
    voiceOutputHeadphoneDevice,
    voiceOutputSpeakerDevice,
    voicePttKey,
    voiceMicGain,
    voicePttPressFreq,
    voicePttReleaseFreq,
    voicePttVolume,
    voicePttPlayDevice,
    voiceConflictVolume,
    voiceConflictPlayDevice,
};

} // namespace config
} // namespace tarvo
