#!/usr/bin/env python3
"""Makes mails for tests and measurements: the same ones for the same arguments, everywhere.

    make-mails.py [--start N] COUNT >mails.mbox     an mbox
    make-mails.py [--start N] COUNT FOLDER          a file for each mail
    make-mails.py --bytes N >mails.mbox             as many as it takes

Of ten mails, four are plain text, four have an HTML part beside it, and two have attachments too. They are of
5 kB in the mean. Each tenth has a line that begins with "From " in its body.
"""
import argparse
import base64
import os
import random
import sys
import textwrap

WORDS = """the of and to in is you that it he for was on are as with his they at be this from have or by one had not but
what all were when we there can an your which their said if do will each about how up out them then she many some so these
would other into has more her two like him see time could no make than first been its who now people my made over did down
only way find use may water long little very after words called just where most know get through back much before go good
new write our used me man too any day same right look think also around another came come work three word must because
does part even place well such here take why things help put years different away again off went old number great tell men
say small every found still between name should home big give air line set own under read last never us left end along
while might next sound below saw something thought both few those always looked show large often together asked house
world going want school important until form food keep children feet land side without boy once animals life enough took
sometimes four head above kind began almost live page got earth need far hand high year mother light parts country father
let night following picture being study second eyes soon times story boys since white days ever paper hard near sentence
better best across during today others however sure means knew try told young miles sun ways thing whole hear example
heard several change answer room sea against top turned learn point city play toward five using himself usually money
seen car morning given order account payment offer price delivery invoice meeting report garden chair""".split()

SENDERS = ["ann", "ben", "carla", "dora", "emil", "frida", "gustav", "hanna", "ivan", "julia"]


class Maker:
    def __init__(self):
        chance = random.Random(2024)
        self.paragraphs = [" ".join(chance.choices(WORDS, k=chance.randrange(30, 130))).capitalize() + "."
                           for _ in range(500)]
        self.wrapped = ["\n".join(textwrap.wrap(text, 72)) for text in self.paragraphs]
        self.attachments = [base64.encodebytes(kind + chance.randbytes(chance.randrange(1500, 6000))).decode()
                            for kind in (b"%PDF-1.4\n", b"\x89PNG\r\n\x1a\n", b"PK\x03\x04") for _ in range(7)]

    def mail(self, number):
        chance = random.Random(number)
        body = self.body(number, chance)
        sender = chance.choice(SENDERS)
        head = ("Return-Path: <%s@shop%d.example>\n"
                "Received: from mx%d.shop.example (mx%d.shop.example [192.0.2.%d])\n"
                "\tby mail.reader.example with ESMTPS id %08x; Fri, 5 Jan 2024 10:%02d:%02d +0100\n"
                "From: \"%s Example\" <%s@shop%d.example>\nTo: reader@reader.example\nSubject: %s (%d)\n"
                "Date: Fri, 5 Jan 2024 10:%02d:%02d +0100\nMessage-ID: <%d.%08x@shop.example>\nMIME-Version: 1.0\n"
                % (sender, number % 50, number % 9, number % 9, number % 250 + 1, chance.getrandbits(32),
                   number // 60 % 60, number % 60, sender.capitalize(), sender, number % 50,
                   " ".join(chance.choices(WORDS, k=5)), number, number // 60 % 60, number % 60, number,
                   chance.getrandbits(32)))
        return head + body

    def text(self, chance, paragraphs, pool):
        return "\n\n".join(chance.choices(pool, k=paragraphs))

    def body(self, number, chance):
        kind = number % 10
        quoted = "\nFrom here on it is the same as before.\n" if kind == 3 else ""
        if kind < 4:
            return ("Content-Type: text/plain; charset=utf-8\n\nDear reader %d,\n\n%s\n%s" %
                    (number, self.text(chance, chance.randrange(4, 15), self.wrapped), quoted))
        boundary = "=_part_%08x" % chance.getrandbits(32)
        parts = ["Content-Type: text/plain; charset=utf-8\n\nDear reader %d,\n\n%s\n" %
                 (number, self.text(chance, 3, self.wrapped)), self.html(number, chance)]
        sort = "alternative"
        if kind >= 8:
            sort = "mixed"
            parts.append("Content-Type: application/octet-stream\nContent-Disposition: attachment; filename=\"file%d.pdf\"\n"
                         "Content-Transfer-Encoding: base64\n\n%s" % (number, chance.choice(self.attachments)))
        return ("Content-Type: multipart/%s; boundary=\"%s\"\n\n" % (sort, boundary) +
                "".join("--%s\n%s\n" % (boundary, part) for part in parts) + "--%s--\n" % boundary)

    def html(self, number, chance):
        paragraphs = "".join(
            "<p style=3D\"color:#%06x\">%s\n<a href=3D\"http://www.shop%d.example/%08x\">%s</a></p>\n" %
            (chance.getrandbits(23), "=\n".join(textwrap.wrap(chance.choice(self.paragraphs), 70)), number % 50,
             chance.getrandbits(32), chance.choice(WORDS)) for _ in range(5))
        hidden = "<font color=3D\"#ffffff\">%s</font>" % " ".join(chance.choices(WORDS, k=8))
        return ("Content-Type: text/html; charset=utf-8\nContent-Transfer-Encoding: quoted-printable\n\n"
                "<html><body bgcolor=3D\"#ffffff\"><h1>Caf=C3=A9 %d</h1>\n%s%s\n</body></html>\n" %
                (number, paragraphs, hidden))


def write_mbox(mails, most):
    written = 0
    for mail in mails:
        text = ("From reader@reader.example Fri Jan  5 10:00:00 2024\n" + mail + "\n").encode()
        sys.stdout.buffer.write(text)
        written += len(text)
        if written >= most:
            return


def write_files(mails, start, folder):
    os.makedirs(folder, exist_ok=True)
    for number, mail in enumerate(mails, start):
        with open(os.path.join(folder, "%07d.eml" % number), "wb") as file:
            file.write(mail.encode())


def main():
    arguments = argparse.ArgumentParser()
    arguments.add_argument("--start", type=int, default=0)
    arguments.add_argument("--bytes", type=int)
    arguments.add_argument("count", type=int, nargs="?", default=sys.maxsize)
    arguments.add_argument("folder", nargs="?")
    given = arguments.parse_args()
    maker = Maker()
    mails = (maker.mail(number) for number in range(given.start, given.start + given.count))
    if given.folder:
        write_files(mails, given.start, given.folder)
    else:
        write_mbox(mails, given.bytes or sys.maxsize)


if __name__ == "__main__":
    main()
