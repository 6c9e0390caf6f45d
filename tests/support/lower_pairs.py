"""Prints the code points that have a lower-case one of their own, with it: {0x41, 0x61}, ..."""

for code_point in range(0x110000):
    lower = ord(chr(code_point).lower()[0])
    if lower != code_point:
        print(f"{{{code_point:#x}, {lower:#x}}},")
