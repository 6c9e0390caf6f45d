"""What is computed from the figures of bench/growth, wherever they are shown."""


def cost_of_another_track(sizes, row):
    """Microseconds of the processor for each track more, from each size to the next: the start of the program, which does not
    grow, is left out. Where the cost grows from step to step, the whole grows faster than the work does."""
    def of(small, big):
        more = big["rows"][row]["processor_seconds"] - small["rows"][row]["processor_seconds"]
        return 1e6 * more / (big["tracks"] - small["tracks"])
    return [of(small, big) for small, big in zip(sizes, sizes[1:])]
