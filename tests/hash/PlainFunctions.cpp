#include <velmara/Velmara.h>

#include <gtest/gtest.h>

// C names one plain function; C++ callers reach it by either name, unqualified within the namespace too.
TEST(PlainFunctions, AreFoundInTheNamespaceAsWell)
{
    EXPECT_EQ(&::vmaracnv_open, &Velmara::vmaracnv_open);
    EXPECT_EQ(&::vmaracnv, &Velmara::vmaracnv);
    EXPECT_EQ(&::vmaracnv_close, &Velmara::vmaracnv_close);
    EXPECT_EQ(&::vmaral_convert_to_utf7imap, &Velmara::vmaral_convert_to_utf7imap);
    EXPECT_EQ(&::vmara_encode_word, &Velmara::vmara_encode_word);
    EXPECT_EQ(&::vmara_decode_encoded_word, &Velmara::vmara_decode_encoded_word);
    EXPECT_EQ(&::vmara_to_utf8, &Velmara::vmara_to_utf8);
    EXPECT_EQ(&::vmara_emailaddress_get_decoded_html, &Velmara::vmara_emailaddress_get_decoded_html);
    EXPECT_EQ(&::htm_txt_get_data, &Velmara::htm_txt_get_data);
    EXPECT_EQ(&::process_jpg, &Velmara::process_jpg);
    EXPECT_EQ(&::process_gif, &Velmara::process_gif);
    EXPECT_EQ(&::process_png, &Velmara::process_png);
}

using namespace Velmara;

TEST(PlainFunctions, AreNotAmbiguousForUsersOfTheNamespace)
{
    char address[32];
    EmailAddress const joe("joe@a.example");
    EXPECT_EQ(21, vmara_emailaddress_get_decoded_html(&joe, address, sizeof address));
    EXPECT_STREQ("&lt;joe@a.example&gt;", address);
    image_data_callback const none = nullptr;
    EXPECT_EQ(nullptr, none);
    cVmaraCnv* const converter = vmaracnv_open("KOI8-R", "UTF-8");
    EXPECT_NE(nullptr, converter);
    vmaracnv_close(converter);
}
