"""A test authority and certificates by it, made by openssl in a folder of the caller's."""

import os
import secrets
import subprocess
import sys

TRUST_ATTEMPTS = 10


def openssl(*arguments):
    subprocess.run(["openssl", *arguments], check=True, stdout=subprocess.DEVNULL,
                   stderr=subprocess.DEVNULL)


def make_authority(folder, name):
    certificate, key = os.path.join(folder, name + ".crt"), os.path.join(folder, name + ".key")
    # A run that was killed leaves its authority trusted; another of the same name would hide ours.
    title = "Quillmarch test authority %s %s" % (name, secrets.token_hex(4))
    # Its signatures by an elliptic curve would be refused by Wine whenever one of their two numbers
    # begins with a zero byte, which one in a hundred does.
    openssl("req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj", "/CN=" + title,
            "-addext", "basicConstraints=critical,CA:TRUE",
            "-addext", "keyUsage=critical,keyCertSign,cRLSign",
            "-keyout", key, "-out", certificate)
    return certificate, key


def make_certificate(folder, name, host, authority):
    path = os.path.join(folder, name)
    with open(path + ".ext", "w", encoding="ascii") as extensions:
        extensions.write("subjectAltName=DNS:%s\nextendedKeyUsage=serverAuth\n" % host)
    openssl("req", "-new", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes",
            "-subj", "/CN=" + host, "-keyout", path + ".key", "-out", path + ".csr")
    openssl("x509", "-req", "-in", path + ".csr", "-CA", authority[0], "-CAkey", authority[1],
            "-CAcreateserial", "-days", "2", "-extfile", path + ".ext", "-out", path + ".crt")
    return path + ".crt", path + ".key"


def add_trusted(trust, authority, environment=None):
    """In a new Wine prefix the first programs fill the system's store, and an authority that is
    added meanwhile may be lost, so it is added until a program of its own sees it."""
    for _ in range(TRUST_ATTEMPTS):
        subprocess.run(trust + ["add", authority], env=environment, check=True)
        if subprocess.run(trust + ["check", authority], env=environment,
                          check=False).returncode == 0:
            return
    sys.exit("The system does not come to trust the test authority")
