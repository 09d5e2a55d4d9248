#pragma once

#include <QStringList>

namespace tarvo::bench {

/// An empty Quick window as the pages' is made, in a process of its own. Questions: "paint N" (so many times a second
/// from now on; answer "done"), "frames" (how many were swapped so far). Gives the exit code. Needs a QApplication.
int runEmptyWindow();

/// Where the client of this test finds the practice network.
struct PagesArguments
{
    QString apiBaseUrl;
    quint16 fsdPort = 0;
    quint16 xplanePort = 0;
    quint16 voiceTcpPort = 0;
    quint16 voiceUdpPort = 0;
    QString pluginUrl;

    /// As words of a command line, and read back from them.
    QStringList toWords() const;
    static PagesArguments fromWords(const QStringList &words);
};

/// The client with its windows: signs in, picks X-Plane, connects as a pilot. Questions: "begin" (does so; answer: what
/// paints), "show KEY" (a section), "minimise", "restore", "voice" (connects it), each of which is answered with
/// "done"; "frames". An empty answer when it fails. Gives the exit code. Needs a QApplication.
int runPages(const PagesArguments &arguments);

} // namespace tarvo::bench
