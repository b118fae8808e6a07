#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include <velmara/MediaIn.h>

#include "facts/MessageFacts.h"

using namespace VelmaraCommand;

TEST(MessageFactsThreads, MessagesAreReadAtOnceWithTheSameResults)
{
    std::string const mail =
        "Subject: =?utf-8?Q?Gr=C3=BC=C3=9Fe?=\nContent-Type: multipart/mixed; boundary=b\n\n--b\n"
        "Content-Type: text/html; charset=iso-8859-1\nContent-Transfer-Encoding: quoted-printable\n\n"
        "<body>Gr=FC=DFe <a href=3Dhttp://a.example/>www.b.example</a></body>\n--b\n"
        "Content-Type: image/gif; name=a.gif\nContent-Transfer-Encoding: base64\n\nR0lGODlh\n--b--\n";
    auto const read = [&] { return jsonOf(factsOf(Velmara::BufferMediaIn(mail.data(), mail.size()))).dump(); };
    std::vector<std::string> results(4);
    std::vector<std::thread> threads;
    for (std::string& result : results)
        threads.emplace_back([&] {
            for (int i = 0; i < 20; ++i) result = read();
        });
    for (std::thread& thread : threads) thread.join();
    for (std::string const& result : results) EXPECT_EQ(results.front(), result);
    EXPECT_NE(std::string::npos, results.front().find("host-mismatch"));
}
