// The smallest program that links the installed library.
#include <iostream>

#include <velmara/Velmara.h>

int main()
{
    Velmara::BufferMediaIn mail(std::string("Subject: Hello\n\nWorld"));
    Velmara::Ref<Velmara::Rfc822Msg> message = Velmara::Rfc822Msg::parse(mail);
    std::string body;
    message->root()->body(true).read(body);
    std::cout << message->root()->headers().find("subject").value() << ": " << body.size() << " bytes\n";
}
