#include <nubCore/nubAbstractProcess_p.h>

#include <kelCore/data/kelDataBlob.h>

#include "support/Capture.h"

#include <functional>
#include <memory>

namespace {

/// A process whose private part the tests can see.
class Process : public nubAbstractProcess
{
public:
    using nubAbstractProcess::nubAbstractProcess;
    Process() = default;

    nubAbstractObjectPrivate &state() { return *nub_d; }
    const nubAbstractObjectPrivate &state() const { return *nub_d; }
};

struct Default
{
    const char *operation;
    std::function<bool(Process &)> holds;
};

} // namespace

TEST(nubAbstractProcessTest, EveryOperationWithAResultGivesNothing)
{
    const Default defaults[] = {
        {"clone", [](Process &p) { return p.clone() == nullptr; }},
        {"description", [](Process &p) { return p.description().isEmpty(); }},
        {"identifier", [](Process &p) { return p.identifier() == "nubAbstractProcess"; }},
        {"name", [](Process &p) { return p.name().isEmpty(); }},
        {"isEqual", [](Process &p) { return p.isEqual(p) && !p.isEqual(Process()); }},
        {"update", [](Process &p) { return p.update() == 0; }},
        {"read(QString)", [](Process &p) { return !p.read(QString("file")); }},
        {"read(QStringList)", [](Process &p) { return !p.read(QStringList{"file"}); }},
        {"write(QString)", [](Process &p) { return !p.write(QString("file")); }},
        {"write(QStringList)", [](Process &p) { return !p.write(QStringList{"file"}); }},
        {"output()", [](Process &p) { return p.output() == nullptr; }},
        {"output(int)", [](Process &p) { return p.output(1) == nullptr; }},
        {"output(int, int)", [](Process &p) { return p.output(1, 2) == nullptr; }},
        {"data()", [](Process &p) { return p.data() == nullptr; }},
        {"data(int)", [](Process &p) { return p.data(1) == nullptr; }},
        {"data(int, int)", [](Process &p) { return p.data(1, 2) == nullptr; }},
        {"channelCount", [](Process &p) { return p.channelCount() == 0; }},
    };
    const LogLevel level(0);
    MessageCapture messages;
    for (const Default &expected : defaults) {
        Process process;
        EXPECT_TRUE(expected.holds(process)) << expected.operation;
    }
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(nubAbstractProcessTest, EveryOperationWithoutAResultDoesNothing)
{
    using Operation = std::function<void(Process &)>;
    int i[] = {1, 2};
    long long l[] = {1, 2};
    double r[] = {1, 2};
    kelDataBlob blob;
    nubAbstractObject object;
    const Operation operations[] = {
        [](Process &p) { p.onCanceled(); },
        [](Process &p) { p.onPropertySet("key", "value"); },
        [](Process &p) { p.onMetaDataSet("key", "value"); },
        [](Process &p) { p.setParameter(1); },
        [](Process &p) { p.setParameter(1, 2); },
        [](Process &p) { p.setParameter(1, 2, 3); },
        [&](Process &p) { p.setParameter(i); },
        [&](Process &p) { p.setParameter(i, 2); },
        [&](Process &p) { p.setParameter(i, 2, 3); },
        [](Process &p) { p.setParameter(1LL); },
        [](Process &p) { p.setParameter(1LL, 2); },
        [](Process &p) { p.setParameter(1LL, 2, 3); },
        [&](Process &p) { p.setParameter(l); },
        [&](Process &p) { p.setParameter(l, 2); },
        [&](Process &p) { p.setParameter(l, 2, 3); },
        [](Process &p) { p.setParameter(1.0); },
        [](Process &p) { p.setParameter(1.0, 2); },
        [](Process &p) { p.setParameter(1.0, 2, 3); },
        [&](Process &p) { p.setParameter(r, 2); },
        [&](Process &p) { p.setParameter(r, 2, 3); },
        [&](Process &p) { p.setParameter(r, 2, 3, 4); },
        [&](Process &p) { p.setParameter(&object); },
        [&](Process &p) { p.setParameter(&object, 2); },
        [&](Process &p) { p.setParameter(&object, 2, 3); },
        [&](Process &p) { p.setInput(&blob); },
        [&](Process &p) { p.setInput(&blob, 2); },
        [&](Process &p) { p.setInput(&blob, 2, 3); },
        [&](Process &p) { p.setData(i); },
        [&](Process &p) { p.setData(i, 2); },
        [&](Process &p) { p.setData(i, 2, 3); },
    };
    const LogLevel level(0);
    MessageCapture messages;
    int index = 0;
    for (const Operation &operation : operations) {
        Process process;
        operation(process);
        EXPECT_EQ(process.output(), nullptr) << index;
        EXPECT_EQ(process.output(2), nullptr) << index;
        EXPECT_EQ(process.output(2, 3), nullptr) << index;
        EXPECT_EQ(process.data(), nullptr) << index;
        EXPECT_EQ(process.channelCount(), 0) << index;
        EXPECT_TRUE(process.state().properties.isEmpty()) << index;
        ++index;
    }
    EXPECT_TRUE(messages.lines().isEmpty());
    EXPECT_EQ(i[0], 1);
    EXPECT_EQ(l[0], 1);
    EXPECT_EQ(r[0], 1);
}

TEST(nubAbstractProcessTest, ACopyCarriesTheTablesAndTheParentAndStartsAFreshRetainCount)
{
    nubAbstractProcess parent;
    Process process(&parent);
    process.state().properties = {{"b", "3"}};
    process.retain();
    const auto copy = std::make_unique<Process>(process);
    EXPECT_EQ(copy->state().properties, process.state().properties);
    EXPECT_EQ(copy->state().properties.value("b"), "3");
    EXPECT_EQ(copy->state().q_ptr, copy.get());
    EXPECT_EQ(copy->state().retainCount, 0);
    EXPECT_EQ(copy->parent(), &parent);
}

TEST(nubAbstractProcessTest, AssignmentCarriesTheTablesAndNotTheParent)
{
    nubAbstractProcess parent;
    Process from(&parent);
    from.state().properties = {{"b", "3"}};
    Process to;
    EXPECT_EQ(&(to = from), &to);
    EXPECT_EQ(to.state().properties.value("b"), "3");
    EXPECT_EQ(to.parent(), nullptr);
}
