# String building: a list of numbers built with + and str in a loop, then read back with slices and
# find and short pieces compared.


def main():
    total = 0
    for r in range(1, 301):
        buf = ""
        for i in range(1, 401):
            buf = buf + str((i * r) % 97) + ","
        total += len(buf)
        piece = buf[-3:]
        if piece == "11,":
            total += 100
        total += buf.find(",42,") + 1
        for i in range(0, len(buf) - 1, 3):
            if buf[i:i + 2] == "7,":
                total += 1
    print("checksum %d" % total)


main()
