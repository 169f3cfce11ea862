#include <nubCore/nubAbstractData_p.h>

#include "support/Capture.h"

#include <functional>
#include <memory>

namespace {

/// Data that overrides nothing but what it must, and whose private part the tests can see.
class Data : public nubAbstractData
{
public:
    using nubAbstractData::nubAbstractData;
    Data() = default;
    Data *clone() override { return new Data(*this); }

    nubAbstractDataPrivate &state() { return static_cast<nubAbstractDataPrivate &>(*nub_d); }

    void fill()
    {
        state().properties = {{"b", "3"}};
        state().readers = {{"reader", true}};
        state().writers = {{"writer", false}};
        state().converters = {{"converter", true}};
        state().serializers = {{"serializer", false}};
        state().deserializers = {{"deserializer", true}};
        state().path = "path";
        state().paths = QStringList{"path", "other"};
        state().channelCount = 3;
        QImage thumbnail(2, 3, QImage::Format_RGB32);
        thumbnail.fill(Qt::red);
        state().thumbnails = {thumbnail};
    }
    bool isFilledAs(Data &other)
    {
        const nubAbstractDataPrivate &a = state();
        const nubAbstractDataPrivate &b = other.state();
        return a.properties == b.properties && a.readers == b.readers && a.writers == b.writers
            && a.converters == b.converters && a.serializers == b.serializers
            && a.deserializers == b.deserializers && a.path == b.path && a.paths == b.paths
            && a.channelCount == b.channelCount && a.thumbnails == b.thumbnails;
    }
};

struct Default
{
    const char *operation;
    std::function<bool(Data &)> holds;
};

} // namespace

TEST(nubAbstractDataTest, EveryOperationWithAResultGivesNothing)
{
    const Default defaults[] = {
        {"read(QString)", [](Data &d) { return !d.read(QString("file")); }},
        {"read(QStringList)", [](Data &d) { return !d.read(QStringList{"file"}); }},
        {"write(QString)", [](Data &d) { return !d.write(QString("file")); }},
        {"write(QStringList)", [](Data &d) { return !d.write(QStringList{"file"}); }},
        {"convert", [](Data &d) { return d.convert("type") == nullptr; }},
        {"serialize", [](Data &d) { return d.serialize().isNull(); }},
        {"deserialize", [](Data &d) { return !d.deserialize("bytes"); }},
        {"output()", [](Data &d) { return d.output() == nullptr; }},
        {"output(int)", [](Data &d) { return d.output(0) == nullptr; }},
        {"data()", [](Data &d) { return d.data() == nullptr; }},
        {"data(int)", [](Data &d) { return d.data(0) == nullptr; }},
        {"parameter", [](Data &d) { return d.parameter(0) == nullptr; }},
        {"numberOfChannels", [](Data &d) { return d.numberOfChannels() == 0; }},
        {"thumbnail", [](Data &d) { return d.thumbnail().isNull(); }},
        {"thumbnails", [](Data &d) { return d.thumbnails().isEmpty(); }},
        {"toVariant", [](Data &d) { return !d.toVariant(&d).isValid(); }},
        {"fromVariant", [](Data &d) { return d.fromVariant(7) == nullptr; }},
    };
    const LogLevel level(0);
    MessageCapture messages;
    for (const Default &expected : defaults) {
        Data data;
        data.fill();
        Data untouched;
        untouched.fill();
        EXPECT_TRUE(expected.holds(data)) << expected.operation;
        EXPECT_TRUE(data.isFilledAs(untouched)) << expected.operation;
    }
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(nubAbstractDataTest, EveryOperationWithoutAResultDoesNothing)
{
    using Operation = std::function<void(Data &)>;
    const nubVector<double> numbers{1, 2};
    const Operation operations[] = {
        [](Data &d) { d.draw(); },
        [](Data &d) { d.setParameter(1); },
        [](Data &d) { d.setParameter(1, 2); },
        [](Data &d) { d.setParameter(1LL); },
        [](Data &d) { d.setParameter(1LL, 2); },
        [](Data &d) { d.setParameter(1.f); },
        [](Data &d) { d.setParameter(1.f, 2); },
        [](Data &d) { d.setParameter(1.0); },
        [](Data &d) { d.setParameter(1.0, 2); },
        [](Data &d) { d.setParameter(QString("a")); },
        [](Data &d) { d.setParameter(QString("a"), 2); },
        [](Data &d) { d.setParameter(&d); },
        [](Data &d) { d.setParameter(&d, 2); },
        [&](Data &d) { d.setParameter(numbers); },
        [&](Data &d) { d.setParameter(numbers, 2); },
        [](Data &d) { d.setData(&d); },
        [](Data &d) { d.setData(&d, 2); },
        [](Data &d) { d.setNumberOfChannels(2); },
        [](Data &d) { d.update(); },
        [](Data &d) { d.onPropertySet("key", "value"); },
        [](Data &d) { d.onMetaDataSet("key", "value"); },
    };
    const LogLevel level(0);
    MessageCapture messages;
    int index = 0;
    for (const Operation &operation : operations) {
        Data data;
        data.fill();
        Data untouched;
        untouched.fill();
        operation(data);
        EXPECT_TRUE(data.isFilledAs(untouched)) << index;
        EXPECT_EQ(data.numberOfChannels(), 0) << index;
        EXPECT_EQ(data.data(), nullptr) << index;
        ++index;
    }
    EXPECT_TRUE(messages.lines().isEmpty());
}

TEST(nubAbstractDataTest, AFreshObjectIsEmpty)
{
    Data data;
    EXPECT_EQ(data.parent(), nullptr);
    EXPECT_EQ(data.state().q_ptr, &data);
    EXPECT_TRUE(data.state().readers.isEmpty());
    EXPECT_TRUE(data.state().writers.isEmpty());
    EXPECT_TRUE(data.state().converters.isEmpty());
    EXPECT_TRUE(data.state().serializers.isEmpty());
    EXPECT_TRUE(data.state().deserializers.isEmpty());
    EXPECT_TRUE(data.state().path.isEmpty());
    EXPECT_TRUE(data.state().paths.isEmpty());
    EXPECT_EQ(data.state().channelCount, 0);
    EXPECT_TRUE(data.state().thumbnails.isEmpty());
}

TEST(nubAbstractDataTest, TheParentIsData)
{
    Data parent;
    const auto *data = new Data(&parent);
    EXPECT_EQ(data->parent(), &parent);
}

TEST(nubAbstractDataTest, ACloneCarriesEveryFieldAndTheParent)
{
    Data parent;
    auto *data = new Data(&parent);
    data->fill();
    data->retain();
    Data *copy = data->clone();
    EXPECT_TRUE(copy->isFilledAs(*data));
    EXPECT_EQ(copy->state().path, "path");
    EXPECT_EQ(copy->parent(), &parent);
    EXPECT_EQ(copy->state().q_ptr, copy);
    EXPECT_EQ(copy->state().retainCount, 0);
}

TEST(nubAbstractDataTest, AssignmentCarriesEveryFieldAndNotTheParent)
{
    Data parent;
    auto *from = new Data(&parent);
    from->fill();
    Data to;
    EXPECT_EQ(&(to = *from), &to);
    EXPECT_TRUE(to.isFilledAs(*from));
    EXPECT_EQ(to.state().thumbnails.size(), 1);
    EXPECT_EQ(to.parent(), nullptr);
}

TEST(nubAbstractDataTest, CopyingAnObjectThatIsNoDataCarriesWhatTheyShare)
{
    class Object : public nubAbstractObject
    {
    public:
        Object() { nub_d->properties = {{"b", "changed"}}; }
    };
    Data data;
    data.fill();
    data.copy(Object());
    EXPECT_EQ(data.state().properties.value("b"), "changed");
    EXPECT_EQ(data.state().path, "path");
    EXPECT_EQ(data.state().channelCount, 3);
}
