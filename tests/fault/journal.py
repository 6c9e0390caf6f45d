"""The journal of an index database, read without the player: it tells how every record came to be what it is."""


class Reader:
    def __init__(self, data):
        self.data = data

    def take(self, size):
        taken, self.data = self.data[:size], self.data[size:]
        return taken

    def number(self):
        byte = self.take(1)[0]
        return byte if byte < 128 else byte - 128 + (self.number() << 7)

    def record(self, former=None):
        """None for no record. The differences to the former one are those to no bytes when there was none."""
        size, made = self.number(), b""
        while len(made) < size - 1:
            made += bytes(self.number())
            made += self.take(self.number())
        former = (former or b"")[:len(made)].ljust(len(made), b"\0")
        return bytes(a ^ b for a, b in zip(made, former)) if size else None


def disagreement(database):
    """What in the journal contradicts itself or the records, or None."""
    now = {}
    for index, operation, changes in database.execute(
            "SELECT index_id, operation, change FROM changes WHERE index_id > 0 UNION ALL "
            "SELECT index_id, operation, changes FROM bulk_changes ORDER BY operation"):
        reader = Reader(changes)
        while reader.data:
            key = int.from_bytes(reader.take(8), "big", signed=True)
            before = reader.record()
            if now.get((index, key), before) != before:
                return f"operation {operation} changes another record than the one before has left"
            now[index, key] = reader.record(before)
    stored = {(index, key): data for index, key, data in database.execute("SELECT index_id, key, data FROM records")}
    if any(stored.get(place) != data for place, data in now.items()):
        return "a record is not what the journal says"
    if database.execute("SELECT 1 FROM changes WHERE operation NOT IN (SELECT id FROM operations)").fetchall():
        return "a change has no operation"
    return None
