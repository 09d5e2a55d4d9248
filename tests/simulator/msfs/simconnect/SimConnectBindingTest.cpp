#include "simulator/msfs/simconnect/SimConnectBinding.h"
#include "simulator/msfs/simconnect/SimConnectLibrary.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>

using namespace tarvo::simulator::msfs;

namespace {

/// What a library was asked for, and what it lacks.
struct LibraryBook
{
    QStringList calls{};
    quint32 loadError = 0;
    QByteArray missing{}; ///< an entry point
};

/// Gives an address of its own for each entry point. Nobody calls them.
class BookedLibrary : public SimConnectLibrary
{
public:
    explicit BookedLibrary(LibraryBook &book) : m_book(book) {}

    quint32 load(const QString &name) override
    {
        m_book.calls.append(QStringLiteral("load ") + name);
        return m_book.loadError;
    }
    void *entryPoint(const char *name) override
    {
        m_book.calls.append(QLatin1String(name));
        return m_book.missing == name ? nullptr : &m_places[m_place++ % m_places.size()];
    }
    void free() override { m_book.calls.append(QStringLiteral("free")); }

private:
    LibraryBook &m_book;
    std::array<char, 16> m_places{};
    std::size_t m_place = 0;
};

const QStringList entryPointNames{QStringLiteral("SimConnect_Open"),
                                  QStringLiteral("SimConnect_Close"),
                                  QStringLiteral("SimConnect_AddToDataDefinition"),
                                  QStringLiteral("SimConnect_ClearDataDefinition"),
                                  QStringLiteral("SimConnect_RequestDataOnSimObject"),
                                  QStringLiteral("SimConnect_RequestDataOnSimObjectType"),
                                  QStringLiteral("SimConnect_SetDataOnSimObject"),
                                  QStringLiteral("SimConnect_GetNextDispatch"),
                                  QStringLiteral("SimConnect_MapClientEventToSimEvent"),
                                  QStringLiteral("SimConnect_TransmitClientEvent"),
                                  QStringLiteral("SimConnect_SubscribeToSystemEvent"),
                                  QStringLiteral("SimConnect_AICreateNonATCAircraft"),
                                  QStringLiteral("SimConnect_AIRemoveObject"),
                                  QStringLiteral("SimConnect_AICreateNonATCAircraft_EX1"),
                                  QStringLiteral("SimConnect_EnumerateInputEvents"),
                                  QStringLiteral("SimConnect_SubscribeInputEvent")};
constexpr qsizetype requiredCount = 13;

} // namespace

class SimConnectBindingTest : public QObject
{
    Q_OBJECT

private slots:
    void entryPointsAreTakenInOrder()
    {
        LibraryBook book;
        SimConnectBinding binding(std::make_unique<BookedLibrary>(book));
        QCOMPARE(binding.bind(QStringLiteral("a.dll")), QString());
        QCOMPARE(book.calls, QStringList(QStringLiteral("load a.dll")) + entryPointNames);
        QCOMPARE(binding.name(), QStringLiteral("a.dll"));
        QVERIFY(isFull(binding.functions()));
    }

    void sameNameIsKept()
    {
        LibraryBook book;
        SimConnectBinding binding(std::make_unique<BookedLibrary>(book));
        binding.bind(QStringLiteral("a.dll"));
        const auto open = binding.functions().Open;
        book.calls.clear();
        QCOMPARE(binding.bind(QStringLiteral("a.dll")), QString());
        QCOMPARE(book.calls, QStringList());
        QVERIFY(binding.functions().Open == open);
    }

    void otherNameFreesTheFirst()
    {
        LibraryBook book;
        SimConnectBinding binding(std::make_unique<BookedLibrary>(book));
        binding.bind(QStringLiteral("a.dll"));
        book.calls.clear();
        QCOMPARE(binding.bind(QStringLiteral("b.dll")), QString());
        QCOMPARE(book.calls.first(2), (QStringList{QStringLiteral("free"), QStringLiteral("load b.dll")}));
        QCOMPARE(binding.name(), QStringLiteral("b.dll"));
    }

    void staysAsItIsWhileASessionIsOpen()
    {
        LibraryBook book;
        SimConnectBinding binding(std::make_unique<BookedLibrary>(book));
        binding.bind(QStringLiteral("a.dll"));
        book.calls.clear();
        binding.hold();
        QCOMPARE(binding.bind(QStringLiteral("b.dll")), QStringLiteral("a.dll is in use"));
        QCOMPARE(binding.bind(QStringLiteral("a.dll")), QString());
        binding.release();
        QCOMPARE(book.calls, QStringList());
        QVERIFY(isFull(binding.functions()));
        binding.letGo();
        binding.release();
        QCOMPARE(book.calls, QStringList(QStringLiteral("free")));
    }

    void libraryThatIsNotThere()
    {
        LibraryBook book{.loadError = 126};
        SimConnectBinding binding(std::make_unique<BookedLibrary>(book));
        QCOMPARE(binding.bind(QStringLiteral("a.dll")), QStringLiteral("Failed to load a.dll (Win32 error 126)"));
        QCOMPARE(book.calls, QStringList(QStringLiteral("load a.dll")));
        QVERIFY(isEmpty(binding));
    }

    void otherNameThatIsNotThereFreesTheFirst()
    {
        LibraryBook book;
        SimConnectBinding binding(std::make_unique<BookedLibrary>(book));
        binding.bind(QStringLiteral("a.dll"));
        book.loadError = 5;
        QCOMPARE(binding.bind(QStringLiteral("b.dll")), QStringLiteral("Failed to load b.dll (Win32 error 5)"));
        QVERIFY(isEmpty(binding));
    }

    void missingEntryPoint_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("required");
        for (qsizetype i = 0; i < entryPointNames.size(); ++i)
            QTest::newRow(qPrintable(entryPointNames.at(i))) << entryPointNames.at(i) << (i < requiredCount);
    }

    void missingEntryPoint()
    {
        QFETCH(QString, name);
        QFETCH(bool, required);
        LibraryBook book{.missing = name.toLatin1()};
        SimConnectBinding binding(std::make_unique<BookedLibrary>(book));
        const QString failure = binding.bind(QStringLiteral("a.dll"));
        if (!required) {
            QCOMPARE(failure, QString());
            QCOMPARE(book.calls, QStringList(QStringLiteral("load a.dll")) + entryPointNames);
            return;
        }
        QCOMPARE(failure, QStringLiteral("Failed to resolve %1 from a.dll").arg(name));
        QCOMPARE(book.calls.last(2), (QStringList{name, QStringLiteral("free")}));
        QVERIFY(isEmpty(binding));
    }

    void endFreesWhatIsHeld()
    {
        LibraryBook book;
        {
            SimConnectBinding binding(std::make_unique<BookedLibrary>(book));
            binding.bind(QStringLiteral("a.dll"));
            book.calls.clear();
        }
        QCOMPARE(book.calls, QStringList(QStringLiteral("free")));
    }

    void systemWithoutTheSimulatorHasNoLibrary()
    {
        SimConnectBinding binding(systemSimConnectLibrary());
        QCOMPARE(binding.bind(QStringLiteral("SimConnect-is-not-here.dll")),
                 QStringLiteral("Failed to load SimConnect-is-not-here.dll (Win32 error 126)"));
        QVERIFY(isEmpty(binding));
    }

    void programHasOneBinding() { QCOMPARE(SimConnectBinding::shared(), SimConnectBinding::shared()); }

private:
    static bool isFull(const SimConnectFunctions &functions)
    {
        void *entries[sizeof functions / sizeof(void *)];
        static_assert(std::size(entries) == 16);
        std::memcpy(entries, &functions, sizeof functions);
        return std::none_of(std::begin(entries), std::end(entries), [](void *entry) { return entry == nullptr; });
    }

    static bool isEmpty(const SimConnectBinding &binding)
    {
        return binding.name().isEmpty() && binding.functions().Open == nullptr &&
               binding.functions().AICreateNonATCAircraft_EX1 == nullptr;
    }
};

TARVO_TEST(SimConnectBindingTest)
#include "SimConnectBindingTest.moc"
