#include <kelCore/process/kelAbstractProcessMessageSender.h> // alone

#include <gtest/gtest.h>

namespace {

/// Sends to itself.
class MessageSender : public kelAbstractProcessMessageSender
{
public:
    bool setParameterFile(std::string file) override { return !file.empty(); }
    void sendMsg(std::string message) override { m_sent += message; }

    std::string m_sent;
};

} // namespace

TEST(stageHeaderTest, MessageSenderNeedsNoOther)
{
    MessageSender sender;
    kelAbstractProcessMessageSender &stage = sender;
    EXPECT_FALSE(stage.setParameterFile(""));
    EXPECT_TRUE(stage.setParameterFile("file"));
    stage.sendMsg("message");
    EXPECT_EQ(sender.m_sent, "message");
}
