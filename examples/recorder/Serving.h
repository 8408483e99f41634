#pragma once

#include "common/Address.h"
#include "Recording.h"

/*! Where the two servers listen; port 0 takes one that is free. */
struct ServingOptions
{
    Address configuration;
    Address data;
};

/*! The servers through which other processes mirror the configuration and the values of a recording. Used by
 * one thread. */
class Serving
{
public:
    Serving(const Recording &recording, const ServingOptions &options);

    /*! Adds both servers and waits until they listen; false if one does not. */
    bool start();
    /*! Tells where they do: ready {"configuration":"127.0.0.1:40001","data":"127.0.0.1:40002"} */
    QString readyLine() const;

private:
    bool listens(const QStringList &group, const QString &name, Address &address) const;

    const Recording &recording;
    ServingOptions options; // with the real ports after start()
};
