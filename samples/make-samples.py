#!/usr/bin/env python3
"""Makes the sample messages of this folder; the same bytes on every run.

    python3 samples/make-samples.py

They are written part by part rather than by a mail library, so that each shows exactly what its
comment says. All names, hosts and addresses are reserved for examples.
"""
import base64
import pathlib
import quopri
import struct
import zlib

HERE = pathlib.Path(__file__).resolve().parent


def png(width, height, red, green, blue):
    """A picture in one colour."""
    def chunk(kind, data):
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body))
    rows = b"".join(b"\0" + bytes((red, green, blue)) * width for _ in range(height))
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)) +
            chunk(b"IDAT", zlib.compress(rows, 9)) + chunk(b"IEND", b""))


def gif():
    """One transparent pixel, as trackers send it."""
    return (b"GIF89a\x01\x00\x01\x00\x80\x00\x00\xff\xff\xff\x00\x00\x00!\xf9\x04\x01\x00\x00\x00\x00"
            b",\x00\x00\x00\x00\x01\x00\x01\x00\x00\x02\x02D\x01\x00;")


def b64(data):
    return base64.encodebytes(data).decode("ascii")


def qp(text, charset="utf-8"):
    return quopri.encodestring(text.encode(charset)).decode("ascii")


def word(text, charset="utf-8"):
    return "=?%s?B?%s?=" % (charset, base64.b64encode(text.encode(charset)).decode("ascii"))


def entity(headers, body):
    return "".join("%s: %s\n" % pair for pair in headers) + "\n" + body


def multipart(boundary, parts, preamble="", epilogue=""):
    """A delimiter stands on a line of its own, so each part ends with a line end that is not its own."""
    text = preamble
    for part in parts:
        text += "--%s\n%s\n" % (boundary, part)
    return text + "--%s--\n%s" % (boundary, epilogue)


def save(name, text, crlf=False, charset="ascii"):
    data = text if isinstance(text, bytes) else text.encode(charset)
    if crlf:
        data = data.replace(b"\n", b"\r\n")
    (HERE / name).write_bytes(data)


ROUTE = [
    ("Received", "from relay.mail.example (relay.mail.example [192.0.2.25])\n"
                 "\tby mx.reader.example with ESMTPS id 4f7Qx1\n"
                 "\tfor <ann@reader.example>; Tue, 3 Mar 2026 09:15:04 +0100"),
    ("Received", "from app7.shop.example ([198.51.100.7])\n"
                 "\tby relay.mail.example with ESMTP id 77aa01;\n"
                 "\tTue, 3 Mar 2026 08:15:01 +0000"),
]


def newsletter():
    """HTML with a plain twin, an image inside the message, a tracker, a link and hidden text."""
    plain = ("Dear Ann,\n\nour spring catalogue is here: 30 % off garden chairs until Sunday.\n"
             "See it at https://www.shop.example/spring\n\nThe Shop at the Corner\n")
    html = """<html><head><title>Spring</title></head>
<body bgcolor="#ffffff" text="#333333">
<p><img src="cid:logo@shop.example" alt="The Shop" width="120" height="40"></p>
<h1 style="color:#2a7a2a">Spring is here</h1>
<p>Dear Ann, our spring catalogue is here: <b>30&nbsp;% off</b> garden chairs until Sunday.</p>
<p style="color:#fefefe">garden chair garden chair cheap cheap</p>
<p style="font-size:0">winter coats</p>
<p><a href="https://www.shop.example/spring?c=17">See the catalogue</a></p>
<hr>
<p><font size="1">You get this mail as a customer.
<a href="https://list.shop.example/out">www.shop.example/unsubscribe</a></font></p>
<img src="https://track.example/p.gif?id=4711" width="1" height="1">
</body></html>
"""
    related = multipart("=_related_1", [
        entity([("Content-Type", "text/html; charset=utf-8"), ("Content-Transfer-Encoding", "quoted-printable")],
               qp(html)),
        entity([("Content-Type", "image/png; name=logo.png"), ("Content-Transfer-Encoding", "base64"),
                ("Content-ID", "<logo@shop.example>"), ("Content-Disposition", "inline; filename=logo.png")],
               b64(png(120, 40, 42, 122, 42)))])
    save("newsletter.eml", entity(
        ROUTE + [("From", "The Shop at the Corner <news@shop.example>"), ("To", "Ann Reader <ann@reader.example>"),
                 ("Subject", "Spring is here: 30 % off"), ("Date", "Tue, 3 Mar 2026 08:15:00 +0000"),
                 ("Message-ID", "<spring.2026.4711@shop.example>"),
                 ("List-Unsubscribe", "<mailto:out@list.shop.example>, <https://list.shop.example/out>"),
                 ("MIME-Version", "1.0"),
                 ("Content-Type", 'multipart/alternative;\n\tboundary="=_alternative_1"')],
        multipart("=_alternative_1", [
            entity([("Content-Type", "text/plain; charset=utf-8")], plain),
            entity([("Content-Type", 'multipart/related; boundary="=_related_1"')], related)],
            preamble="This is a message in MIME format.\n")))


def forwards():
    """A forward of a forward: message/rfc822 twice, the inner one with an attachment."""
    innermost = entity(
        [("From", "carol@third.example"), ("To", "bob@second.example"), ("Subject", "Minutes of Monday"),
         ("Date", "Mon, 2 Mar 2026 17:00:00 +0000"), ("MIME-Version", "1.0"),
         ("Content-Type", "multipart/mixed; boundary=inner")],
        multipart("inner", [
            entity([("Content-Type", "text/plain; charset=us-ascii")], "Minutes attached.\n"),
            entity([("Content-Type", "text/csv; charset=us-ascii; name=minutes.csv"),
                    ("Content-Disposition", "attachment; filename=minutes.csv")],
                   "item,owner\nbudget,carol\n")]))
    middle = entity(
        [("From", "bob@second.example"), ("To", "ann@reader.example"), ("Subject", "Fwd: Minutes of Monday"),
         ("MIME-Version", "1.0"), ("Content-Type", "multipart/mixed; boundary=middle")],
        multipart("middle", [
            entity([("Content-Type", "text/plain")], "See below.\n"),
            entity([("Content-Type", "message/rfc822")], innermost)]))
    save("forwards.eml", entity(
        [("From", "ann@reader.example"), ("To", "dora@reader.example"),
         ("Subject", "Fwd: Fwd: Minutes of Monday"), ("Date", "Tue, 3 Mar 2026 10:00:00 +0000"),
         ("MIME-Version", "1.0"), ("Content-Type", "multipart/mixed; boundary=outer")],
        multipart("outer", [
            entity([("Content-Type", "text/plain; charset=us-ascii")], "Can you file these?\n"),
            entity([("Content-Type", "message/rfc822")], middle)])), crlf=True)


def attachments():
    """Names in RFC 2231 and RFC 2047, bodies in Base64 and Quoted-Printable."""
    report = "Überblick über das erste Quartal:\r\nUmsatz = 1.234.567 €\r\n".encode("utf-8")
    save("attachments.eml", entity(
        [("From", word("Jürgen Müller") + " <juergen@firma.example>"), ("To", "ann@reader.example"),
         ("Subject", "=?utf-8?Q?Bericht_=C3=BCber_das_Quartal?="), ("Date", "Wed, 4 Mar 2026 12:30:00 +0100"),
         ("MIME-Version", "1.0"), ("Content-Type", "multipart/mixed; boundary=\"----=_Part_7\"")],
        multipart("----=_Part_7", [
            entity([("Content-Type", "text/plain; charset=iso-8859-1"),
                    ("Content-Transfer-Encoding", "quoted-printable")],
                   qp("Hallo Ann,\n\nanbei der Bericht. Grüße, Jürgen\n", "iso-8859-1")),
            entity([("Content-Type", "application/octet-stream"), ("Content-Transfer-Encoding", "base64"),
                    ("Content-Disposition", "attachment;\n filename*0*=utf-8'de'Bericht%20%C3%BCber%20;\n"
                                            " filename*1*=das%20Quartal;\n filename*2=\".txt\"")],
                   b64(report)),
            entity([("Content-Type", "text/plain; charset=utf-8;\n name=\"" + word("Übersicht.txt") + "\""),
                    ("Content-Transfer-Encoding", "quoted-printable"),
                    ("Content-Disposition", "attachment;\n filename=\"" + word("Übersicht.txt") + "\"")],
                   qp("Umsatz = 1.234.567 €\n")),
            entity([("Content-Type", "image/gif; name=pixel.gif"), ("Content-Transfer-Encoding", "base64"),
                    ("Content-Disposition", "attachment; filename=pixel.gif")], b64(gif()))])), crlf=True)


def in_charset(name, charset, codec, subject, sender, text, encoding):
    if encoding == "base64":
        body = b64(text.encode(codec))
    elif encoding == "quoted-printable":
        body = qp(text, codec)
    else:
        body = None
    head = entity(
        [("From", word(sender, charset) + " <writer@mail.example>"), ("To", "ann@reader.example"),
         ("Subject", word(subject, charset)), ("Date", "Thu, 5 Mar 2026 06:00:00 +0000"), ("MIME-Version", "1.0"),
         ("Content-Type", "text/plain; charset=" + charset), ("Content-Transfer-Encoding", encoding)], "")
    save(name, head.encode("ascii") + (body.encode("ascii") if body is not None else text.encode(codec)))


def charsets():
    in_charset("japanese.eml", "iso-2022-jp", "iso2022_jp", "会議のお知らせ", "山田太郎",
               "明日の会議の資料を添付します。\nよろしくお願いいたします。\n", "7bit")
    in_charset("russian.eml", "koi8-r", "koi8_r", "Отчёт за неделю", "Иван Петров",
               "Добрый день!\n\nОтчёт за неделю готов, посмотрите, пожалуйста.\n", "8bit")
    in_charset("chinese.eml", "gb2312", "gb2312", "项目会议通知", "王小明",
               "大家好，\n\n明天上午十点召开项目会议，请准时参加。\n", "base64")
    in_charset("arabic.eml", "windows-1256", "cp1256", "دعوة إلى الاجتماع", "أحمد علي",
               "مرحبا،\n\nيسرنا دعوتكم إلى الاجتماع يوم الأحد.\n", "quoted-printable")


def bounce():
    """What a server sends back (RFC 3464): a text, the status and the headers of the lost mail."""
    status = ("Reporting-MTA: dns; mx.reader.example\nArrival-Date: Tue, 3 Mar 2026 09:15:04 +0100\n\n"
              "Final-Recipient: rfc822; nobody@reader.example\nAction: failed\nStatus: 5.1.1\n"
              "Diagnostic-Code: smtp; 550 5.1.1 <nobody@reader.example>: no such user\n")
    lost = entity([("From", "news@shop.example"), ("To", "nobody@reader.example"), ("Subject", "Spring is here")], "")
    save("bounce.eml", entity(
        [("Return-Path", "<>"), ("From", "Mail System <mailer-daemon@mx.reader.example>"),
         ("To", "news@shop.example"), ("Subject", "Undelivered mail"), ("Auto-Submitted", "auto-replied"),
         ("Date", "Tue, 3 Mar 2026 09:15:10 +0100"), ("MIME-Version", "1.0"),
         ("Content-Type", "multipart/report; report-type=delivery-status;\n\tboundary=\"r1/mx.reader.example\"")],
        multipart("r1/mx.reader.example", [
            entity([("Content-Type", "text/plain; charset=us-ascii")],
                   "Your mail could not be delivered to nobody@reader.example.\n"),
            entity([("Content-Type", "message/delivery-status")], status),
            entity([("Content-Type", "text/rfc822-headers")], lost)])))


def broken():
    """Much that is wrong at once: a mailbox line, a folded blank line, a blank before a colon, two
    Content-Types, a delimiter with text behind it, a raw byte in Base64, an unclosed inner multipart
    and text behind the end."""
    save("broken.eml", (
        b"Subject: cheap  watches\r\n \t \r\n and more\r\n"
        b"From: \"Unclosed <a@bad.example>\r\n"
        b"Content-Type: multipart/mixed; boundary=\"abc\r\n"
        b"Content-Type: text/plain\r\n"
        b"To : nobody@reader.example\r\n"
        b"\r\n"
        b"text before the first delimiter\r\n"
        b"--ab and some text behind it\r\n"
        b"Content-Type: text/html; charset=\"utf-8\r\n"
        b"Content-Transfer-Encoding: base64\r\n"
        b"\r\n"
        b"PGI+Y2hl\r\nYXA8\x00L2I+\r\n"
        b"--ab\r\n"
        b"Content-Type: multipart/alternative; boundary=inner\r\n"
        b"\r\n"
        b"--inner\r\n"
        b"\r\n"
        b"=3Dno header at all=\xff\r\n"
        b"--abc--\r\n"
        b"text behind the end\r\n"))


def layouts():
    """The same words twice, in another layout and with other names and amounts."""
    head = [("From", "desk@office.example"), ("To", "ann@reader.example"), ("MIME-Version", "1.0"),
            ("Content-Type", "text/plain; charset=us-ascii")]
    save("reminder.eml", entity(head + [("Subject", "Reminder")],
         "Please remember the meeting about the garden budget, Mr Smythe.\n\n"
         "Bring the invoice and the signed contract with you: 1200.50 are due.\n"))
    save("reminder-relaid.eml", entity(head + [("Subject", "REMINDER!")],
         "Ms Qxzw 17.03.2026,\n--\nPLEASE   remember the meeting about   the GARDEN budget, Mr. Jqkx.\n"
         "    bring the invoice and THE signed contract. with you: 99.95 are due.\n"), crlf=True)


for make in (layouts, newsletter, forwards, attachments, charsets, bounce, broken):
    make()
