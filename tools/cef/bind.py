def emit(description, interface, generator):
    return {}
