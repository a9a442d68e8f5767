# A program to compare with: implants savegame.dat into copy.reu as stashkeep does.
import struct

with open("savegame.dat", "rb") as file:
    data = file.read()
with open("copy.reu", "r+b") as file:
    image = bytearray(file.read())
    for page, pointer in enumerate((0x900, 0x908, 0x1100, 0x1108)):
        place = struct.unpack_from("<I", image, pointer)[0]
        image[place : place + 256] = data[256 * page : 256 * page + 256]
    file.seek(0)
    file.write(image)
