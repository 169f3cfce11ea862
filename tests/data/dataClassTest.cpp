/// \file
/// What holds for every data class: one pointer per object, the names, what copies carry of the base, what
/// copying between unlike classes says, and that a class may be derived from with a private class.

#include "data/DataClasses.h"
#include "support/VirtualSlot.h"

#include <iostream>
#include <memory>
#include <type_traits>

namespace {

/// An object of the class whose private part the tests see.
template <class Kind> class Opened : public Kind::Class
{
public:
    nubAbstractDataPrivate &state() { return static_cast<nubAbstractDataPrivate &>(*this->nub_d); }
};

/// Data of no class of the library.
class Foreign : public nubAbstractData
{
public:
    explicit Foreign(const QString &identifier = QStringLiteral("Foreign")) : m_identifier(identifier)
    {
        static_cast<nubAbstractDataPrivate &>(*nub_d).path = QStringLiteral("path");
    }
    Foreign *clone() override { return new Foreign(m_identifier); }
    QString identifier() const override { return m_identifier; }

private:
    QString m_identifier;
};

/// Notes what another object's framework part is like when it is first asked what it is.
class Witness : public Foreign
{
public:
    explicit Witness(const nubAbstractDataPrivate &seen) : m_seen(seen) { }
    QString identifier() const override
    {
        if (!m_asked)
            pathWhenAsked = m_seen.path;
        m_asked = true;
        return QStringLiteral("Witness");
    }
    mutable QString pathWhenAsked;

private:
    const nubAbstractDataPrivate &m_seen;
    mutable bool m_asked = false;
};

/// No data at all.
class NoData : public nubAbstractObject
{
public:
    NoData() { nub_d->properties.insert(QStringLiteral("k"), QStringLiteral("v")); }
};

/// A class of an application's with a state of its own, as the library's classes are made.
template <class Kind> class DerivedPrivate : public Kind::Private
{
public:
    ~DerivedPrivate() override { ++destroyed; }
    int value = 7;
    static inline int destroyed = 0;
};

template <class Kind> class Derived : public Kind::Class
{
public:
    Derived() : Kind::Class(*new DerivedPrivate<Kind>) { }
    explicit Derived(QObject *parent) : Kind::Class(*new DerivedPrivate<Kind>, parent) { }
    Derived(const Derived &other)
        : Kind::Class(*new DerivedPrivate<Kind>(static_cast<const DerivedPrivate<Kind> &>(*other.nub_d)),
                      other.parent())
    { }
    Derived *clone() override { return new Derived(*this); }
    DerivedPrivate<Kind> &state() { return static_cast<DerivedPrivate<Kind> &>(*this->nub_d); }
};

/// The operation that a class derived from this one would append next.
template <class Kind> class Appending : public Kind::Class
{
public:
    virtual void appended() { }
};

/// Does not copy, but counts.
template <class Kind> class Recorder : public Kind::Class
{
public:
    using Kind::Class::copy;
    void copy(const typename Kind::CopyArgument &) override { ++copies; }
    int copies = 0;
};

template <class Kind> constexpr bool isKelData = std::is_base_of_v<kelAbstractData, typename Kind::Class>;

template <class Kind> const char *className() { return Kind::Class::staticMetaObject.className(); }

QStringList times(int count, const QString &text)
{
    QStringList list;
    for (int i = 0; i < count; ++i)
        list.append(text);
    return list;
}

/// Keeps the physical object's trace off the screen.
template <class Kind> class dataClassTest : public testing::Test
{
protected:
    dataClassTest() : m_output(std::cout.rdbuf(nullptr)) { }
    ~dataClassTest() override { std::cout.rdbuf(m_output); }

private:
    std::streambuf *m_output;
};

TYPED_TEST_SUITE(dataClassTest, AllDataClasses);

} // namespace

TYPED_TEST(dataClassTest, AnObjectIsOnePointerToItsState)
{
    using Class = typename TypeParam::Class;
    if (std::is_same_v<Class,
                       kelDataLinkedPhysicalObject> || std::is_same_v<Class, kelDataLinkedPhysicalObjectLink>)
        EXPECT_GT(sizeof(Class), sizeof(nubAbstractObject)) << "they hold the graph themselves";
    else
        EXPECT_EQ(sizeof(Class), sizeof(nubAbstractObject));
}

TYPED_TEST(dataClassTest, TheClassIsAMetaObjectClassNamedAsItIsIdentified)
{
    const typename TypeParam::Class object;
    EXPECT_EQ(object.identifier(), className<TypeParam>());
    EXPECT_STREQ(object.metaObject()->className(), className<TypeParam>());
    EXPECT_EQ(object.metaObject()->superClass(), &TypeParam::Base::staticMetaObject);
    EXPECT_EQ(object.metaObject()->methodCount(), QObject::staticMetaObject.methodCount());
    EXPECT_EQ(object.metaObject()->propertyCount(), QObject::staticMetaObject.propertyCount());
}

TYPED_TEST(dataClassTest, ThePrivateClassFollowsThePublicOne)
{
    EXPECT_TRUE((std::is_base_of_v<typename TypeParam::BasePrivate, typename TypeParam::Private>));
    EXPECT_TRUE((std::is_base_of_v<typename TypeParam::Base, typename TypeParam::Class>));
    EXPECT_TRUE(std::has_virtual_destructor_v<typename TypeParam::Private>);
    Opened<TypeParam> object;
    EXPECT_NE(dynamic_cast<typename TypeParam::Private *>(&object.state()), nullptr);
    EXPECT_EQ(object.state().q_ptr, &object);
}

TYPED_TEST(dataClassTest, VirtualOperationsAreThoseOfTheBaseAndTheStatedOwnOnes)
{
    const int afterFramework = slot(&nubAbstractData::fromVariant) + 1;
    const int inherited = (isKelData<TypeParam> ? 1 : 0)
        + (std::is_same_v<typename TypeParam::Base, kelAbstractDataCalibration> ? 3 : 0);
    EXPECT_EQ(slot(&Appending<TypeParam>::appended), afterFramework + inherited + TypeParam::ownOperations);
}

TYPED_TEST(dataClassTest, AFreshObjectHasNoParentAndNothingOfTheBase)
{
    Opened<TypeParam> object;
    EXPECT_EQ(object.parent(), nullptr);
    EXPECT_TRUE(object.state().path.isEmpty());
    EXPECT_EQ(object.state().retainCount, 0);
    if constexpr (isKelData<TypeParam>) {
        EXPECT_TRUE(object.getMap().isEmpty());
        EXPECT_TRUE(object.getSpecificProperties().isEmpty());
    }
}

TYPED_TEST(dataClassTest, ACloneCarriesTheFrameworksPartTheParentAndThePropertiesButNotTheMap)
{
    QObject parent;
    auto *object = new Opened<TypeParam>;
    object->setParent(&parent);
    object->state().path = "path";
    object->retain();
    object->retain();
    if constexpr (isKelData<TypeParam>) {
        object->addSpecificProperty("k", 7);
        QVariantMap map{{"m", 1}};
        object->setMap(map);
    }
    MessageCapture messages;
    nubAbstractData *clone = object->clone();
    const auto *copy = new Opened<TypeParam>(*object);
    EXPECT_TRUE(messages.lines().isEmpty());
    EXPECT_STREQ(clone->metaObject()->className(), className<TypeParam>());
    EXPECT_NE(clone, object);
    for (const nubAbstractObject *made : std::initializer_list<const nubAbstractObject *>{clone, copy})
        EXPECT_EQ(made->parent(), &parent);
    EXPECT_EQ(clone->retain(), 1) << "each object counts its own references";
    EXPECT_EQ(object->retain(), 3);

    auto *opened = new Opened<TypeParam>(*object);
    EXPECT_EQ(opened->state().path, "path");
    EXPECT_EQ(opened->state().q_ptr, opened);
    if constexpr (isKelData<TypeParam>) {
        EXPECT_EQ(opened->getSpecificProperties(), (QVariantMap{{"k", 7}}));
        EXPECT_TRUE(opened->getMap().isEmpty());
    }
}

TYPED_TEST(dataClassTest, AssignmentCallsTheVirtualCopyAndGivesTheObject)
{
    const typename TypeParam::Class other;
    Recorder<TypeParam> recorder;
    typename TypeParam::Class &object = recorder;
    EXPECT_EQ(&(object = other), &recorder);
    EXPECT_EQ(recorder.copies, 1);
}

TYPED_TEST(dataClassTest, AssignmentThroughTheRootIsTheClasssOwnCopy)
{
    Opened<TypeParam> from, to;
    from.state().path = "path";
    MessageCapture messages;
    nubAbstractObject &object = to;
    EXPECT_EQ(&(object = static_cast<const nubAbstractObject &>(from)), &to);
    EXPECT_TRUE(messages.lines().isEmpty());
    EXPECT_EQ(to.state().path, "path");
}

TYPED_TEST(dataClassTest, AssignmentCarriesTheFrameworksPartInSilenceAndNeitherMap)
{
    Opened<TypeParam> from, to;
    from.state().path = "path";
    from.retain();
    QVariantMap map{{"own", 3}};
    if constexpr (isKelData<TypeParam>) {
        from.addSpecificProperty("k", 1);
        to.addSpecificProperty("own", 2);
        to.setMap(map);
    }
    MessageCapture messages;
    to = from;
    EXPECT_TRUE(messages.lines().isEmpty());
    EXPECT_EQ(to.state().path, "path");
    EXPECT_EQ(to.state().retainCount, 0);
    EXPECT_EQ(to.state().q_ptr, &to);
    if constexpr (isKelData<TypeParam>) {
        EXPECT_EQ(to.getSpecificProperties(), (QVariantMap{{"own", 2}}));
        EXPECT_EQ(to.getMap(), map);
    }
}

TYPED_TEST(dataClassTest, AssigningAnObjectToItselfIsSilent)
{
    Opened<TypeParam> object;
    object.state().path = "path";
    MessageCapture messages;
    const Opened<TypeParam> &same = object;
    object = same;
    EXPECT_TRUE(messages.lines().isEmpty());
    EXPECT_EQ(object.state().path, "path");
}

TYPED_TEST(dataClassTest, CopyFromAnotherKindWarnsAndTakesTheFrameworksPart)
{
    for (const int current : {0, 17, 18}) {
        Opened<TypeParam> object;
        const LogLevel level(current);
        MessageCapture messages;
        static_cast<nubAbstractObject &>(object).copy(Foreign());
        EXPECT_EQ(messages.count(TypeParam::slicing()), current <= 17 ? TypeParam::slicingWarnings : 0);
        EXPECT_EQ(object.state().path, "path");
        EXPECT_EQ(object.identifier(), className<TypeParam>());
    }
}

TYPED_TEST(dataClassTest, TheFrameworksPartIsCopiedBeforeTheKindsAreCompared)
{
    Opened<TypeParam> object;
    const Witness witness(object.state());
    const LogLevel level(18);
    static_cast<nubAbstractObject &>(object).copy(witness);
    EXPECT_EQ(witness.pathWhenAsked, "path");
}

TYPED_TEST(dataClassTest, CopyFromWhatIsNoDataWarnsAndTakesWhatTheyShare)
{
    Opened<TypeParam> object;
    object.state().path = "own";
    MessageCapture messages;
    static_cast<nubAbstractObject &>(object).copy(NoData());
    EXPECT_EQ(messages.lines(), times(TypeParam::slicingWarnings, TypeParam::slicing()));
    EXPECT_EQ(object.state().properties.value("k"), "v");
    EXPECT_EQ(object.state().path, "own");
}

TYPED_TEST(dataClassTest, AForeignClassUnderTheSameIdentifierIsWarnedOfOnceAndNotCopied)
{
    Opened<TypeParam> object;
    MessageCapture messages;
    static_cast<nubAbstractObject &>(object).copy(Foreign(className<TypeParam>()));
    EXPECT_EQ(messages.lines(), QStringList{TypeParam::slicing()});
    EXPECT_EQ(object.state().path, "path");
}

TYPED_TEST(dataClassTest, AClassMayBeDerivedFromWithAPrivateClassOfItsOwn)
{
    DerivedPrivate<TypeParam>::destroyed = 0;
    {
        QObject parent;
        auto *object = new Derived<TypeParam>(&parent);
        EXPECT_EQ(object->parent(), &parent);
        EXPECT_EQ(object->state().q_ptr, object);
        object->state().value = 9;
        object->state().path = "path";
        const std::unique_ptr<Derived<TypeParam>> clone(object->clone());
        EXPECT_EQ(clone->state().value, 9);
        EXPECT_EQ(clone->state().path, "path");
        EXPECT_EQ(clone->state().q_ptr, clone.get());
        EXPECT_EQ(Derived<TypeParam>().identifier(), className<TypeParam>());
    }
    EXPECT_EQ(DerivedPrivate<TypeParam>::destroyed, 3);
}

TYPED_TEST(dataClassTest, ReadAndWriteAreTheDefaultsWhereTheClassHasNoneOfItsOwn)
{
    typename TypeParam::Class object;
    const LogLevel level(1);
    MessageCapture messages;
    QStringList expected;
    const auto expectNotice = [&](const char *signature) {
        if (isKelData<TypeParam>)
            expected.append(defaultNotice(signature, className<TypeParam>()));
    };
    if (TypeParam::readIsTheDefault) {
        EXPECT_FALSE(object.read(QString("file")));
        expectNotice("virtual bool kelAbstractData::read(const QString&)");
    }
    if (TypeParam::writeIsTheDefault) {
        EXPECT_FALSE(object.write(QString("file")));
        expectNotice("virtual bool kelAbstractData::write(const QString&)");
    }
    EXPECT_FALSE(object.read(QStringList{"file"}));
    EXPECT_FALSE(object.write(QStringList{"file"}));
    EXPECT_EQ(messages.lines(), expected);
}

TYPED_TEST(dataClassTest, SettingSpecificPropertiesIsTheBases)
{
    if constexpr (isKelData<TypeParam>) {
        typename TypeParam::Class object;
        const LogLevel level(1);
        MessageCapture messages;
        EXPECT_TRUE(object.setSpecificProperties(QVariantMap{{"k", 1}}));
        EXPECT_EQ(messages.lines(),
                  QStringList{
                      defaultNotice("virtual bool kelAbstractData::setSpecificProperties(const QVariantMap&)",
                                    className<TypeParam>())});
        EXPECT_EQ(object.getSpecificProperties(), (QVariantMap{{"k", 1}}));
    } else {
        EXPECT_FALSE((std::is_base_of_v<kelAbstractDataPrivate, typename TypeParam::Private>));
    }
}
