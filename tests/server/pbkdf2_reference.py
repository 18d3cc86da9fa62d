"""Independent PBKDF2-HMAC-SHA256 for the account store test.

Usage: pbkdf2_reference.py PASSWORD SALT_BASE64 ITERATIONS LENGTH
Prints the derived key in base64.
"""
import base64
import hashlib
import sys

password, salt, iterations, length = sys.argv[1:5]
key = hashlib.pbkdf2_hmac("sha256", password.encode("utf-8"), base64.b64decode(salt), int(iterations), int(length))
print(base64.b64encode(key).decode("ascii"))
