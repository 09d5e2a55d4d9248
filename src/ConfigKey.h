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

/// Every setting that the file holds, each told once: KEY(form, name of its constant, fields of the form).
#define TARVO_STORED_KEYS(KEY)                                                                                         \
    KEY(StringKey, authRefreshToken, .key = "Auth/RefreshToken", .isEncrypted = true)                                  \
    KEY(StringKey, authUsername, .key = "Auth/Username")                                                               \
    KEY(StringKey, authPassword, .key = "Auth/Password", .isEncrypted = true)                                          \
    KEY(BoolKey, authRememberPassword, "Auth/RememberPassword", false)                                                 \
    KEY(BoolKey, authAutoLogin, "Auth/AutoLogin", false)                                                               \
    KEY(BoolKey, authVatsim, "Auth/Vatsim", true)                                                                      \
    KEY(StringKey, profileRealname, .key = "Profile/Realname")                                                         \
    KEY(StringKey, profileHomeAirport, .key = "Profile/HomeAirport", .defaultValue = "ZBAA")                           \
    KEY(IntKey, xplaneUdpPort, "XPlane/UDPPort", 49000)                                                                \
    KEY(StringKey, xplaneNetworkAddress, .key = "XPlane/NetworkAddress", .defaultValue = "127.0.0.1")                  \
    KEY(PathListKey, xplaneCsl, "XPlane/CSL")                                                                          \
    KEY(StringKey, msfsPackagesPath2020, .key = "MSFS/PackagesPath2020")                                               \
    KEY(StringKey, msfsPackagesPath2024, .key = "MSFS/PackagesPath2024")                                               \
    KEY(StringKey, msfsCommunityPath2020, .key = "MSFS/CommunityPath2020")                                             \
    KEY(StringKey, msfsCommunityPath2024, .key = "MSFS/CommunityPath2024")                                             \
    KEY(PathListKey, msfsCustomMappingPaths2020, "MSFS/CustomMappingPaths2020")                                        \
    KEY(PathListKey, msfsCustomMappingPaths2024, "MSFS/CustomMappingPaths2024")                                        \
    KEY(IntKey, msfsLibraryReloadToken, "MSFS/LibraryReloadToken", 0)                                                  \
    KEY(IntKey, voiceDriver, "Voice/Driver", 13)                                                                       \
    KEY(StringKey, voiceInputDevice, .key = "Voice/InputDevice", .defaultValue = "Default")                            \
    KEY(StringKey, voiceOutputHeadphoneDevice, .key = "Voice/OutputHeadphoneDevice", .defaultValue = "Default")        \
    KEY(StringKey, voiceOutputSpeakerDevice, .key = "Voice/OutputSpeakerDevice", .defaultValue = "Default")            \
    KEY(StringKey, voicePttKey, .key = "Voice/PttKey", .defaultValue = "kb:163")                                       \
    KEY(RealKey, voiceMicGain, "Voice/MicGain", 0.0)                                                                   \
    KEY(RealKey, voicePttPressFreq, "Voice/PttPressFreq", 1500.0)                                                      \
    KEY(RealKey, voicePttReleaseFreq, "Voice/PttReleaseFreq", 1000.0)                                                  \
    KEY(RealKey, voicePttVolume, "Voice/PttVolume", 1.0)                                                               \
    KEY(IntKey, voicePttPlayDevice, "Voice/PttPlayDevice", 0)                                                          \
    KEY(RealKey, voiceConflictVolume, "Voice/ConflictVolume", 1.0)                                                     \
    KEY(IntKey, voiceConflictPlayDevice, "Voice/ConflictPlayDevice", 0)

#define TARVO_DECLARE_KEY(Form, name, ...) inline constexpr Form name{__VA_ARGS__};
TARVO_STORED_KEYS(TARVO_DECLARE_KEY)
#undef TARVO_DECLARE_KEY

inline constexpr StringKey authToken{.key = "Auth/Token", .isVolatile = true};

// What the pilot typed to sign in, which the session needs although it may not be remembered. Filled at every login,
// emptied at the end of the session's clean-up; never in the file.
inline constexpr StringKey sessionUsername{.key = "Session/Username", .isVolatile = true};
inline constexpr StringKey sessionPassword{.key = "Session/Password", .isVolatile = true};

/// The keys of the table above, in its order. The file has them sorted by name.
using AnyKey = std::variant<StringKey, BoolKey, IntKey, RealKey, PathListKey>;
#define TARVO_LIST_KEY(Form, name, ...) name,
inline constexpr auto storedKeys = std::to_array<AnyKey>({TARVO_STORED_KEYS(TARVO_LIST_KEY)});
#undef TARVO_LIST_KEY
#undef TARVO_STORED_KEYS

} // namespace config
} // namespace tarvo
