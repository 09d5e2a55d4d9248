#include "simulator/msfs/simconnect/SimConnectLibrary.h"

#include <windows.h>

namespace tarvo::simulator::msfs {

namespace {

/// A DLL, looked for in Windows' usual order.
class SystemLibrary : public SimConnectLibrary
{
public:
    ~SystemLibrary() override { free(); }

    quint32 load(const QString &name) override
    {
        m_module = LoadLibraryW(reinterpret_cast<const wchar_t *>(name.utf16()));
        return m_module ? 0 : GetLastError();
    }

    void *entryPoint(const char *name) override { return reinterpret_cast<void *>(GetProcAddress(m_module, name)); }

    void free() override
    {
        if (m_module)
            FreeLibrary(m_module);
        m_module = nullptr;
    }

private:
    HMODULE m_module = nullptr;
};

} // namespace

std::unique_ptr<SimConnectLibrary> systemSimConnectLibrary()
{
    return std::make_unique<SystemLibrary>();
}

} // namespace tarvo::simulator::msfs
