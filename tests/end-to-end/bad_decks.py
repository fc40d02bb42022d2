"""Makes broken decks out of a sound one, each broken in one way."""
import itertools
import pathlib
import random
import re
import struct
import zipfile

SLIDE = "ppt/slides/slide1.xml"
SLIDE_LINKS = "ppt/slides/_rels/slide1.xml.rels"
MAIN = "ppt/presentation.xml"


def parts_of(deck):
    with zipfile.ZipFile(deck) as archive:
        return {name: archive.read(name) for name in archive.namelist()}


def write(path, parts, extra=(), stored=()):
    """STORED names the parts that are not packed, so that no ratio gives them away."""
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as archive:
        for name, data in [*parts.items(), *extra]:
            entry = zipfile.ZipInfo(name)
            entry.compress_type = zipfile.ZIP_STORED if name in stored else zipfile.ZIP_DEFLATED
            with archive.open(entry, "w") as file:
                for piece in [data] if isinstance(data, bytes) else data:
                    file.write(piece)


def changed(name, change, stored=False):
    """A maker that rewrites one part."""
    def make(path, deck):
        parts = parts_of(deck)
        old = parts[name]
        parts[name] = change(old)
        assert parts[name] != old, name
        write(path, parts, stored=[name] if stored else [])
    return make


def put(old, new, count=1):
    return lambda data: data.replace(old, new, count)


def into_tree(markup):
    return put(b"</p:spTree>", markup + b"</p:spTree>")


def doctype(subset):
    return lambda data: re.sub(rb"(<p:sld\b)", b"<!DOCTYPE p:sld [" + subset + rb"]>\1", data, count=1).replace(
        b"<a:t>", b"<a:t>&x;", 1)


def raw(change):
    """A maker that changes the file's own bytes."""
    def make(path, deck):
        path.write_bytes(change(deck.read_bytes()))
    return make


def patched_entry(name, offset, form, value):
    """A maker that lies in the local and the central header of one entry: OFFSET is the field's place
    in the central one."""
    def change(data):
        data = bytearray(data)
        for magic, shift, name_at in ((b"PK\x01\x02", 0, 46), (b"PK\x03\x04", -2, 30)):
            at = -1
            while (at := data.find(magic, at + 1)) >= 0:
                if bytes(data[at + name_at:at + name_at + len(name)]) == name.encode():
                    struct.pack_into(form, data, at + offset + shift, value)
        return bytes(data)
    return raw(change)


def bomb(path, deck):
    """300 MB of blanks inside a slide: half a megabyte in the file."""
    parts = parts_of(deck)
    head, tail = parts[SLIDE].split(b"<p:cSld>", 1)
    blanks = b" " * (1 << 20)
    del parts[SLIDE]
    write(path, parts, [(SLIDE, [head, *[blanks] * 300, b"<p:cSld>" + tail])])


def lying_bomb(path, deck):
    """The same, and its headers say that it is small."""
    bomb(path, deck)
    patched_entry(SLIDE, 24, "<I", 5000)(path, path)


def bomb_in_disguise(path, deck):
    """300 MB again, with enough noise in it that it packs no better than some honest parts do."""
    parts = parts_of(deck)
    head, tail = parts.pop(SLIDE).split(b"<p:cSld>", 1)
    noise = random.Random(1)
    blocks = (b"<!-- " + noise.randbytes(5000).hex().encode() + b" -->" + b" " * (1 << 20) for _ in range(300))
    write(path, parts, [(SLIDE, itertools.chain([head], blocks, [b"<p:cSld>" + tail]))])


def many_parts(path, deck):
    write(path, parts_of(deck), [(f"ppt/media/n{number}.xml", b"") for number in range(200_000)])


def twice(path, deck):
    import warnings
    parts = parts_of(deck)
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        write(path, parts, [(SLIDE, parts[SLIDE])])


def deep(markup_open, markup_close, levels):
    return into_tree(markup_open * levels + markup_close * levels)


def without(name):
    def make(path, deck):
        parts = parts_of(deck)
        del parts[name]
        write(path, parts)
    return make


def many_slides(data):
    entry = re.search(rb"<p:sldId [^>]*/>", data).group()
    copies = b"".join(re.sub(rb'id="\d+"', b'id="%d"' % (1000 + n), entry, count=1) for n in range(400_000))
    return data.replace(b"</p:sldIdLst>", copies + b"</p:sldIdLst>")


EMPTY_GROUP = (b'<p:grpSp><p:nvGrpSpPr><p:cNvPr id="9" name="g"/><p:cNvGrpSpPr/><p:nvPr/></p:nvGrpSpPr><p:grpSpPr/>')
OLE_MAGIC = bytes.fromhex("d0cf11e0a1b11ae1")

# name: maker(path, sound deck)
BAD_DECKS = {
    "empty": raw(lambda data: b""),
    "text": raw(lambda data: b"Dear reader, this is no deck.\n" * 40),
    "cut-in-half": raw(lambda data: data[:len(data) // 2]),
    "cut-at-the-end": raw(lambda data: data[:-30]),
    "ole-container": raw(lambda data: OLE_MAGIC + b"\0" * 2040),
    "ole-encrypted": raw(lambda data: OLE_MAGIC + b"\0" * 1016 + "EncryptedPackage".encode("utf-16-le") + b"\0" * 2000),
    "encrypted-entry": patched_entry(SLIDE, 8, "<H", 1),
    "unknown-compression": patched_entry(SLIDE, 10, "<H", 99),
    "wrong-checksum": patched_entry(SLIDE, 16, "<I", 0x12345678),
    "bomb": bomb,
    "lying-bomb": lying_bomb,
    "bomb-in-disguise": bomb_in_disguise,
    "many-parts": many_parts,
    "same-part-twice": twice,
    "external-entity": changed(SLIDE, doctype(b'<!ENTITY x SYSTEM "file:///etc/passwd">')),
    "entity-laughs": changed(SLIDE, doctype(
        b'<!ENTITY a "lol">' + b"".join(b'<!ENTITY %c "%s">' % (98 + n, b"&%c;" % (97 + n) * 10) for n in range(9))
        + b'<!ENTITY x "&j;">')),
    "cut-slide": changed(SLIDE, lambda data: data[:len(data) // 2]),
    "empty-slide": changed(SLIDE, lambda data: b""),
    "crossed-tags": changed(SLIDE, put(b"</a:p>", b"</a:q>")),
    "no-utf8": changed(SLIDE, put(b"<a:t>", b"<a:t>\xc3\x28")),
    "forbidden-character": changed(SLIDE, put(b"<a:t>", b"<a:t>\x01")),
    "unbound-prefix": changed(SLIDE, into_tree(b"<zz:sp/>")),
    "attribute-twice": changed(SLIDE, put(b'<p:cNvPr id="2"', b'<p:cNvPr id="2" id="3"')),
    "two-roots": changed(SLIDE, lambda data: data + b"<again/>"),
    "deep-groups": changed(SLIDE, deep(EMPTY_GROUP, b"</p:grpSp>", 50_000), stored=True),
    "deep-elements": changed(SLIDE, deep(b"<p:extLst>", b"</p:extLst>", 300_000), stored=True),
    "many-elements": changed(SLIDE, into_tree(b"<p:x/>" * 6_000_000), stored=True),
    "many-slides": changed(MAIN, many_slides, stored=True),
    "main-part-empty": changed(MAIN, lambda data: b""),
    "no-content-types": without("[Content_Types].xml"),
    "no-package-links": without("_rels/.rels"),
    "no-main-part": without(MAIN),
    "no-slide": without(SLIDE),
    "no-layout": without("ppt/slideLayouts/slideLayout1.xml"),
    "no-master": without("ppt/slideMasters/slideMaster1.xml"),
    "no-notes": without("ppt/notesSlides/notesSlide1.xml"),
    "climbing-link": changed(SLIDE_LINKS, put(b"../slideLayouts/", b"../../../../slideLayouts/")),
    "link-to-nothing": changed(SLIDE_LINKS, put(b"slideLayout1.xml", b"slideLayout77.xml")),
    "climbing-part": lambda path, deck: write(path, parts_of(deck), [("../../evil.xml", b"<x/>")]),
    "absolute-part": lambda path, deck: write(path, parts_of(deck), [("/etc/evil.xml", b"<x/>")]),
    "a-document": changed("[Content_Types].xml", put(b"presentationml.presentation.main", b"wordprocessingml.document.main")),
}


def make_bad_decks(folder, deck):
    folder = pathlib.Path(folder)
    for name, maker in BAD_DECKS.items():
        path = folder / f"{name}.pptx"
        maker(path, deck)
        yield path
