"""Values computed from the figures of bench/growth."""


def cost_of_another_track(sizes, row):
    """Processor microseconds per additional track, from each size to the next, which excludes the constant start of the program.
    A cost that rises from step to step means faster than linear growth."""
    def of(small, big):
        more = big["rows"][row]["processor_seconds"] - small["rows"][row]["processor_seconds"]
        return 1e6 * more / (big["tracks"] - small["tracks"])
    return [of(small, big) for small, big in zip(sizes, sizes[1:])]
